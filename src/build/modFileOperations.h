#pragma once

#include "build/clsBuildContext.h"
#include "build/clsRemovableTree.h"

#include <functional>
#include <string>
#include <vector>

/// File operations of the build run. Each logged one writes its line first, so that after a failure
/// the log's last line names what failed.
namespace vesk {

/// The catalogue's folder names are as untrusted as an archive's: whether a path, by its name, is
/// the build tree or lies inside it.
bool IsInTree(const clsBuildContext& context, const std::string& path);

/// To be called before something is written. @throws Failure for a path outside the build tree
void RequireInTree(const clsBuildContext& context, const std::string& path);

/// Deletes a file, a read-only one too. @throws Failure, also when there is none.
void DeleteFileLogged(const clsBuildContext& context, const std::string& path);

/// Deletes a folder with everything in it. What could not be deleted is reported, each thing by
/// itself; that there was no such folder is not.
/// @return whether nothing of it is left
bool DeleteFolderLogged(const clsBuildContext& context, const clsRemovableTree& tree);

/// Creates a folder of the build tree with the levels above it that are missing; one that exists
/// already is fine. @throws Failure
void CreateFolderLogged(const clsBuildContext& context, const std::string& path);

/// Puts a line into the build log for another unit: the text and two blanks.
void LogIndented(const clsBuildContext& context, const std::string& text);

/// What a search found.
struct FoundFiles {
    std::vector<std::string> paths; ///< Full paths, a folder's own files before its subfolders'.

    /// What could not be looked at, and why: files whose names the ANSI code page cannot hold and
    /// that have no short name, and folders that could not be read.
    std::vector<Problem> problems;
};

/// The files below a folder whose names match. Empty files are left out: nothing could be read or
/// edited in them.
/// @param folder start folder, ending in "\"; a missing one gives an empty result
/// @param what what is not done with what cannot be looked at, for its problem
/// @param pattern as for the system's file search; an empty one becomes "*.inf", for the caller too
/// @param meanwhile called after each folder, so that a window stays alive
FoundFiles FindFiles(const std::string& folder, std::string& pattern, const std::string& what,
                     const std::function<void()>& meanwhile = {});

} // namespace vesk
