#include "archive/clsUnzipTarget.h"

#include "base/UniqueHandle.h"
#include "base/modFile.h"
#include "base/modSystemError.h"
#include "base/modText.h"

#include <algorithm>
#include <limits>

namespace vesk {

namespace {

FILETIME ToFileTime(std::uint64_t ticks) {
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

void SetTimes(HANDLE handle, const FileStamp& stamp) {
    const auto pointer = [](const std::optional<FILETIME>& time) {
        return time ? &*time : nullptr;
    };
    if (stamp.modified || stamp.accessed || stamp.created)
        SetFileTime(handle, pointer(stamp.created), pointer(stamp.accessed),
                    pointer(stamp.modified));
}

/// Whether an old file may be replaced. @throws ZipProblem for what is no plain file
void CheckReplaceable(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        ThrowLastError("cannot replace", path);
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        throw ZipProblem("a link stands in its place");
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        throw ZipProblem("a folder stands in its place");
}

/// A file being written; deleted again unless Keep() is reached. Nearly every file is new, so it is
/// written under its own name. Where one stands already, the new one is written beside it and moved
/// over it when complete: the old one is never half overwritten, and never written through should
/// it be a second name of a file elsewhere.
class NewFile {
public:
    NewFile(const std::string& path, DWORD access, const FileStamp& stamp)
        : finalPath_(path), path_(path), stamp_(stamp) {
        if (!Create(access) && GetLastError() == ERROR_FILE_EXISTS) {
            CheckReplaceable(finalPath_);
            CreateBeside(access);
        }
        if (!file_)
            ThrowLastError("cannot create", finalPath_);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        if (kept_ || !file_)
            return;
        file_.Reset();
        SetFileAttributesA(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileA(path_.c_str());
    }

    void Write(std::span<const std::byte> content) {
        constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;
        while (!content.empty()) {
            const auto part = static_cast<DWORD>(std::min(content.size(), kMostAtOnce));
            DWORD written = 0;
            if (WriteFile(file_.Get(), content.data(), part, &written, nullptr) == 0)
                ThrowLastError("cannot write", path_);
            if (written == 0)
                ThrowSystemError(ERROR_DISK_FULL, "cannot write", path_);
            content = content.subspan(written);
        }
    }

    /// Gives the file its size and hands its content out as memory.
    void Fill(std::uint64_t size, const std::function<void(std::span<std::byte>)>& fill) {
        if (size > std::numeric_limits<std::size_t>::max() / 4)
            ThrowSystemError(ERROR_NOT_ENOUGH_MEMORY, "cannot write", path_);
        const MappingHandle mapping(CreateFileMappingA(file_.Get(), nullptr, PAGE_READWRITE,
                                                       static_cast<DWORD>(size >> 32),
                                                       static_cast<DWORD>(size), nullptr));
        if (!mapping)
            ThrowLastError("cannot write", path_);
        const MappedView view(MapViewOfFile(mapping.Get(), FILE_MAP_WRITE, 0, 0, 0));
        if (!view)
            ThrowLastError("cannot write", path_);
        auto* memory = static_cast<std::byte*>(const_cast<void*>(view.Get()));
        fill({memory, static_cast<std::size_t>(size)});
        // Pages written later than the times are set would change them again.
        if (FlushViewOfFile(memory, 0) == 0)
            ThrowLastError("cannot write", path_);
    }

    void Keep() {
        SetTimes(file_.Get(), stamp_);
        if (path_ != finalPath_)
            MoveIntoPlace();
        kept_ = true;
    }

private:
    /// Only where nothing stands, not even a link whose target is missing: without the last flag
    /// the system would create that target.
    bool Create(DWORD access) {
        file_.Reset(CreateFileA(path_.c_str(), access, FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                                stamp_.attributes | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        return static_cast<bool>(file_);
    }

    void CreateBeside(DWORD access) {
        constexpr int kTries = 100; // names left behind by runs that were cut off
        for (int number = 0; number < kTries; ++number) {
            path_ = ParentOf(finalPath_) + "\\~vesk" + std::to_string(number);
            if (Create(access) || GetLastError() != ERROR_FILE_EXISTS)
                return;
        }
    }

    /// The file is open until it is in place: after a failure the destructor finds it.
    void MoveIntoPlace() {
        SetFileAttributesA(finalPath_.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (MoveFileExA(path_.c_str(), finalPath_.c_str(), MOVEFILE_REPLACE_EXISTING) == 0)
            ThrowLastError("cannot replace", finalPath_);
    }

    const std::string& finalPath_;
    std::string path_;
    const FileStamp& stamp_;
    FileHandle file_;
    bool kept_ = false;
};

/// A file system may promise a size that it cannot hold, and the first byte written into the mapped
/// file then ends the program.
void CheckFreeSpace(const std::string& folder, std::uint64_t size) {
    ULARGE_INTEGER free{};
    if (GetDiskFreeSpaceExA(folder.c_str(), &free, nullptr, nullptr) != 0 && free.QuadPart < size)
        ThrowSystemError(ERROR_DISK_FULL, "cannot write into", folder);
}

} // namespace

std::optional<FILETIME> StampMaker::FromDosTime(WORD date, WORD time) const {
    FILETIME local{};
    SYSTEMTIME localParts{};
    SYSTEMTIME parts{};
    FILETIME result{};
    // By the rules of the stored day: whether summer time holds today does not matter.
    if (DosDateTimeToFileTime(date, time, &local) == 0 ||
        FileTimeToSystemTime(&local, &localParts) == 0 ||
        TzSpecificLocalTimeToSystemTime(const_cast<TIME_ZONE_INFORMATION*>(&zone_), &localParts,
                                        &parts) == 0 ||
        SystemTimeToFileTime(&parts, &result) == 0)
        return std::nullopt;
    return result;
}

FileStamp StampMaker::Of(const ZipMember& member) const {
    FileStamp stamp;
    stamp.attributes |= member.externalAttributes &
                        (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    const auto take = [](const std::optional<std::uint64_t>& ticks) {
        return ticks ? std::optional(ToFileTime(*ticks)) : std::nullopt;
    };
    stamp.modified = take(member.times.modified);
    stamp.accessed = take(member.times.accessed);
    stamp.created = take(member.times.created);
    if (!stamp.modified)
        stamp.modified = FromDosTime(member.dosDate, member.dosTime);
    return stamp;
}

clsUnzipTarget::clsUnzipTarget(const std::string& folder)
    : folder_(WithoutTrailingBackslash(AbsolutePath(folder))), lastFolder_(folder_) {
    CreateFolderPath(folder_);
    known_.insert(LowerCase(folder_));
}

void clsUnzipTarget::EnsureFolder(const std::string& path) {
    if (path == lastFolder_)
        return;
    std::string key = LowerCase(path);
    if (!known_.contains(key)) {
        EnsureFolder(ParentOf(path));
        if (CreateDirectoryA(path.c_str(), nullptr) == 0) {
            const DWORD error = GetLastError();
            const DWORD attributes = GetFileAttributesA(path.c_str());
            if (attributes == INVALID_FILE_ATTRIBUTES)
                ThrowSystemError(error, "cannot create", path);
            if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
                throw ZipProblem("a link stands on the way to it: " + path);
            if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
                throw ZipProblem("a file stands on the way to it: " + path);
        }
        known_.insert(std::move(key));
    }
    lastFolder_ = path;
}

void clsUnzipTarget::AddFolder(const std::string& path, const FileStamp& stamp) {
    EnsureFolder(path);
    stampedFolders_.emplace_back(path, stamp);
}

void clsUnzipTarget::AddFile(const std::string& path, std::span<const std::byte> content,
                             const FileStamp& stamp) {
    EnsureFolder(ParentOf(path));
    NewFile file(path, GENERIC_WRITE, stamp);
    file.Write(content);
    file.Keep();
}

void clsUnzipTarget::AddLargeFile(const std::string& path, std::uint64_t size,
                                  const std::function<void(std::span<std::byte>)>& fill,
                                  const FileStamp& stamp) {
    EnsureFolder(ParentOf(path));
    CheckFreeSpace(ParentOf(path), size);
    NewFile file(path, GENERIC_READ | GENERIC_WRITE, stamp);
    file.Fill(size, fill);
    file.Keep();
}

void clsUnzipTarget::FinishFolders() {
    std::ranges::sort(stampedFolders_, std::ranges::greater(),
                      [](const auto& folder) { return folder.first.size(); });
    for (const auto& [path, stamp] : stampedFolders_) {
        const FileHandle folder(CreateFileA(
            path.c_str(), FILE_WRITE_ATTRIBUTES,
            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
            FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        if (!folder)
            continue;
        SetTimes(folder.Get(), stamp);
        if ((stamp.attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_ARCHIVE)) != 0)
            SetFileAttributesA(path.c_str(), stamp.attributes);
    }
    stampedFolders_.clear();
}

} // namespace vesk
