#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// Files and folders of the system. Paths are texts in the ANSI code page, separated by "\".
/// What throws, throws a Failure with the system's error code, the action and the path.
namespace vesk {

/// The most bytes that are taken for a text. An archive of a few megabytes can bring an INF file of
/// gigabytes, and every edit reads all of it. What an edit adds is read all the same.
inline constexpr std::uint32_t kLongestText = std::uint32_t{16} * 1024 * 1024;
inline constexpr std::uint32_t kRoomForEdits = std::uint32_t{64} * 1024;

/// The whole file as one text; empty when it is missing, cannot be read, or is no text for its
/// length.
std::string ReadWholeFile(const std::string& path);

/// The same where a file that is there and cannot be read must not pass for an empty one. Throws.
std::string ReadFileIfThere(const std::string& path);

/// Throws when a file is longer than kLongestText, and for no other reason: for one that others are
/// about to read.
void RequireTextSize(const std::string& path);

/// Why nothing could be read of a file that is there, as Problem::reason has it: it is empty, or
/// what the system says.
std::string WhyUnreadable(const std::string& path);

/// Writes the text over the file's beginning, a read-only file included. Nothing happens for an
/// empty text, nothing is thrown, and a longer old file keeps its tail: every caller writes at
/// least as much as it read. Where more care is needed, use WriteCompleteFile.
/// @return false when it was not written whole; the thread's last error then says why
bool WriteWholeFile(const std::string& path, const std::string& text);

/// Makes `path` hold exactly `text`: written beside it first and moved into place when complete, so
/// that the old content survives every failure. That file has the path's name with ".vesk-new"
/// behind it; one that a run left there when it was cut off goes, and a link in its place is a
/// failure. Throws.
void WriteCompleteFile(const std::string& path, const std::string& text);

/// What there is under a path. Unknown: the system does not say, so something may be there.
enum class PathState { Nothing, File, Folder, Unknown };

/// Goes by the path's own attributes: a link is not followed. Throws nothing.
PathState StateOf(const std::string& path);

/// True when the path's attributes can be read and it is not a folder.
bool FileExists(const std::string& path);

/// True when the path's attributes can be read and it is a folder.
bool FolderExists(const std::string& path);

/// True when something on the way from the folder (itself not looked at) down to the path (looked
/// at) is there already and is a junction or symbolic link, or stands in for another place in any
/// other way. The path must begin with the folder.
bool HasLinkBelow(const std::string& folder, const std::string& path);

/// True when the folder, or anything at any depth in it, is a junction or symbolic link. For what
/// is left of a tree that was removed: an empty folder in it may be removed by this call.
bool HoldsLink(const std::string& folder);

/// Takes the read-only attribute from a file, if there is one; everything else stays.
void MakeWritable(const std::string& path);

/// Deletes one file, a read-only one too. Throws.
void RemoveFile(const std::string& path);

/// True when the path is a file and no link to one.
bool PlainFileExists(const std::string& path);

/// Deletes a file that is about to be written again, if there is one. Should it be a second name of
/// a file elsewhere, that one stays as it is; a link stays too, and is a failure. Throws.
void RemoveOwnFile(const std::string& path);

/// Creates one folder, whose parent must exist. Throws, also when it exists already.
void CreateFolder(const std::string& path);

/// Creates a folder with all missing levels above it; one that exists already is fine. Throws.
void CreateFolderPath(const std::string& path);

/// Copies one file over the target, a read-only target too. Throws.
void CopyFileOver(const std::string& source, const std::string& target);

/// The same for a file that must never be seen half written: it is copied beside the target and
/// moved into place when complete. Throws; the target is then as it was.
/// @param meanwhile called again and again while it works, so that a window stays alive; not to
/// throw
void CopyCompleteFile(const std::string& source, const std::string& target,
                      const std::function<void()>& meanwhile = {});

/// Renames or moves a file or folder; the target must not exist. Throws.
void MovePath(const std::string& source, const std::string& target);

/// The absolute form of a path, without ".", ".." and doubled backslashes. A bare drive ("C:")
/// stands for its root and not for its current folder. Throws.
std::string AbsolutePath(const std::string& path);

} // namespace vesk
