#pragma once

#include "archive/clsNameTree.h"
#include "archive/clsNewFile.h"
#include "archive/modZipDirectory.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace vesk {

/// Turns members' stored times and attributes into the file system's.
class StampMaker {
public:
    StampMaker() { GetTimeZoneInformation(&zone_); }
    [[nodiscard]] FileStamp Of(const ZipMember& member) const;

private:
    [[nodiscard]] std::optional<FILETIME> FromDosTime(WORD date, WORD time) const;
    TIME_ZONE_INFORMATION zone_{};
};

/// What became of a file besides being there.
struct AddedFile {
    std::optional<std::size_t> writtenOver; ///< The member of the same run whose file this was.
    std::uint32_t timeError = 0;            ///< Why the times were not set; 0 when they were.
};

/// The folder that an archive is extracted into. Paths given to it come from MemberPath for this
/// folder, members are known by numbers. Nothing is written through a junction or link that stands
/// below the folder; what stands in the way of a file is replaced, not written through.
class clsUnzipTarget {
public:
    /// Gets each piece of a file.
    using Sink = std::function<void(std::span<const std::byte> piece)>;

    /// Creates the folder. @throws Failure
    explicit clsUnzipTarget(const std::string& folder);

    /// The folder's absolute path as LongPath gives it, without a trailing backslash.
    [[nodiscard]] const std::wstring& Folder() const { return folder_; }

    /// Creates a folder with those above it; its stamp is set by FinishFolders, since everything
    /// written into the folder would change its times again. @throws Failure, ZipProblem
    void AddFolder(const std::wstring& path, std::size_t member, const FileStamp& stamp);

    /// Writes a complete file. After a failure there is none under this name.
    /// @throws Failure, ZipProblem
    AddedFile AddFile(const std::wstring& path, std::size_t member,
                      std::span<const std::byte> content, const FileStamp& stamp);

    /// The same in pieces: `fill` hands them to the sink it is given. What it throws passes
    /// through, and no file stays.
    AddedFile AddLargeFile(const std::wstring& path, std::size_t member, std::uint64_t size,
                           const std::function<void(const Sink& sink)>& fill,
                           const FileStamp& stamp);

    /// Sets the stamps of the folders, the innermost first.
    /// @param notSet told of each member whose times could not be set, and the system's error code
    void FinishFolders(const std::function<void(std::size_t member, std::uint32_t error)>& notSet);

private:
    struct StampedFolder {
        std::wstring path;
        std::size_t member;
        FileStamp stamp;
    };

    std::size_t EnsureFolder(std::wstring_view path);

    std::wstring folder_;
    clsNameTree names_; ///< What is in it exists: plain folders, and files of this run.
    std::vector<StampedFolder> stampedFolders_;
};

} // namespace vesk
