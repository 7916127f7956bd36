#pragma once

#include "build/BuildContext.h"

#include <string>
#include <vector>

/// File operations of the build run. Each logged one writes its line first, so that after a failure
/// the log's last line names what failed.
namespace vesk {

/// Deletes a file, a read-only one too. @throws Failure, also when there is none.
void DeleteFileLogged(const BuildContext& context, const std::string& path);

/// Deletes a folder with everything in it. @throws Failure, also when there is none.
void DeleteFolderLogged(const BuildContext& context, const std::string& path);

/// Creates one folder. @throws Failure, also when it exists.
void CreateFolderLogged(const BuildContext& context, const std::string& path);

/// Puts a line into the build log for another unit: the text and two blanks.
void LogIndented(const BuildContext& context, const std::string& text);

/// Full paths of the files below a folder whose names match, a folder's own files before those of
/// its subfolders. Empty files are left out: nothing could be read or edited in them.
/// @param folder start folder, ending in "\"; a missing one gives an empty result
/// @param pattern as for the system's file search; an empty one becomes "*.inf", for the caller too
std::vector<std::string> FindFiles(const std::string& folder, std::string& pattern);

} // namespace vesk
