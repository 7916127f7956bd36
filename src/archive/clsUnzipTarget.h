#pragma once

#include <windows.h>

#include "archive/modZipDirectory.h"

#include <functional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace vesk {

/// What is restored of a member besides its content.
struct FileStamp {
    DWORD attributes = FILE_ATTRIBUTE_ARCHIVE; ///< Read-only, hidden and system as stored.
    std::optional<FILETIME> modified, accessed, created;
};

/// Turns members' stored times and attributes into the file system's.
class StampMaker {
public:
    StampMaker() { GetTimeZoneInformation(&zone_); }
    [[nodiscard]] FileStamp Of(const ZipMember& member) const;

private:
    [[nodiscard]] std::optional<FILETIME> FromDosTime(WORD date, WORD time) const;
    TIME_ZONE_INFORMATION zone_{};
};

/// The folder that an archive is extracted into. Paths given to it come from PathInside for this
/// folder. Nothing is written through a junction or link that stands below the folder; what stands
/// in the way of a file is replaced, not written through.
class clsUnzipTarget {
public:
    /// Creates the folder. @throws Failure
    explicit clsUnzipTarget(const std::string& folder);

    /// The folder's absolute path, without a trailing backslash.
    [[nodiscard]] const std::string& Folder() const { return folder_; }

    /// Creates a folder with those above it; its stamp is set by FinishFolders, since everything
    /// written into the folder would change its times again. @throws Failure, ZipProblem
    void AddFolder(const std::string& path, const FileStamp& stamp);

    /// Writes a complete file. After a failure there is none under this name.
    /// @throws Failure, ZipProblem
    void AddFile(const std::string& path, std::span<const std::byte> content,
                 const FileStamp& stamp);

    /// The same for content too large for memory: `fill` gets a file of `size` bytes as memory.
    /// What `fill` throws passes through, and no file stays.
    void AddLargeFile(const std::string& path, std::uint64_t size,
                      const std::function<void(std::span<std::byte>)>& fill,
                      const FileStamp& stamp);

    /// Sets the stamps of the folders, the innermost first.
    void FinishFolders();

private:
    void EnsureFolder(const std::string& path);

    std::string folder_;
    std::string lastFolder_;                ///< Neighbours in an archive mostly share their folder.
    std::unordered_set<std::string> known_; ///< Lower case; exist and are plain folders.
    std::vector<std::pair<std::string, FileStamp>> stampedFolders_;
};

} // namespace vesk
