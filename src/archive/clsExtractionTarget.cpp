#include "archive/clsExtractionTarget.h"

#include "archive/ArchiveProblem.h"
#include "base/clsPatience.h"
#include "base/modFolderEntries.h"
#include "base/modSystemError.h"
#include "base/modWide.h"

#include <algorithm>
#include <ranges>

namespace vesk {

namespace {

std::wstring_view ParentOf(std::wstring_view path) {
    return path.substr(0, path.rfind(L'\\'));
}

std::wstring_view NameOf(std::wstring_view path) {
    return path.substr(path.rfind(L'\\') + 1);
}

bool MakeFolder(const std::wstring& path) {
    return CreatePatiently(path, [&] { return CreateDirectoryW(path.c_str(), nullptr) != 0; });
}

/// Creates a folder with those above it, whatever the length of its path. @throws Failure
void CreateWithParents(const std::wstring& path) {
    std::vector<std::wstring_view> missing; // the innermost first
    const auto exists = [](std::wstring_view level) {
        if (level.ends_with(L':')) // a drive; under this name it is a device
            return true;
        const DWORD attributes = GetFileAttributesW(std::wstring(level).c_str());
        return attributes != INVALID_FILE_ATTRIBUTES &&
               (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    };
    const std::size_t top = LongPath(std::wstring_view()).size();
    for (std::wstring_view level = path; level.size() > top && !exists(level);
         level = ParentOf(level))
        missing.push_back(level);
    for (const std::wstring_view level : missing | std::views::reverse) {
        const std::wstring name(level);
        if (!MakeFolder(name)) {
            const DWORD error = GetLastError();
            ThrowSystemError(error, "cannot create", Narrowed(WithoutLongPrefix(name)));
        }
    }
}

/// Creates a folder, unless it is there. @throws Failure, ArchiveProblem
void CreatePlainFolder(const std::wstring& path) {
    if (MakeFolder(path))
        return;
    const DWORD error = GetLastError();
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        ThrowSystemError(error, "cannot create", Narrowed(WithoutLongPrefix(path)));
    if (IsLink(path, attributes))
        throw ArchiveProblem("its path leads through a link");
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
        throw ArchiveProblem("its path leads through a file");
    // Two folders of the archive would become one, and their files each other's.
    if (IsShortName(path))
        throw ArchiveProblem("its path leads through the short name of another folder");
}

/// A file system may take long to find out that it cannot hold a file.
void CheckFreeSpace(std::wstring_view folder, std::uint64_t size) {
    ULARGE_INTEGER free{};
    ULARGE_INTEGER total{};
    const std::wstring name(folder);
    // Some file systems of servers say 0 of 0: then they know neither.
    if (GetDiskFreeSpaceExW(name.c_str(), &free, &total, nullptr) != 0 && total.QuadPart > 0 &&
        free.QuadPart < size)
        ThrowSystemError(ERROR_DISK_FULL, "cannot write into", Narrowed(WithoutLongPrefix(name)));
}

} // namespace

clsExtractionTarget::clsExtractionTarget(const std::string& folder)
    : folder_(AbsoluteLongPath(folder)) {
    while (folder_.ends_with(L'\\'))
        folder_.pop_back();
    CreateWithParents(folder_);
}

std::size_t clsExtractionTarget::EnsureFolder(std::wstring_view path) {
    return names_.EnterFolder(path, folder_.size(), [this](std::wstring_view missing) {
        if (!WritesNothing())
            CreatePlainFolder(std::wstring(missing));
    });
}

void clsExtractionTarget::AddFolder(const std::wstring& path, std::size_t member,
                                    const FileStamp& stamp) {
    EnsureFolder(path);
    if (path != folder_ && !WritesNothing()) // which is not the archive's own
        stampedFolders_.push_back({path, member, stamp});
}

template <class Write>
AddedFile clsExtractionTarget::Take(const std::wstring& path, const MemberContent& content,
                                    Write write) {
    const std::size_t folder = EnsureFolder(ParentOf(path));
    const bool isShared =
        !shared_ || shared_->MayBeShared(std::wstring_view(path).substr(folder_.size()));
    AddedFile added;
    if (!WritesNothing() &&
        !(isShared && names_.IsTakenByLater(folder, NameOf(path), content.number))) {
        added.stampError = write();
        added.isWritten = true;
    }
    if (isShared)
        added.overwriting = names_.PutFile(folder, NameOf(path), content);
    return added;
}

AddedFile clsExtractionTarget::AddFile(const std::wstring& path, const MemberContent& content,
                                       std::span<const std::byte> bytes, const FileStamp& stamp) {
    return Take(path, content, [&] {
        clsNewFile file(path, stamp, clsNewFile::Place::UnderItsName);
        file.Write(bytes);
        return file.Keep();
    });
}

clsExtractionTarget::LargeFile::LargeFile(clsExtractionTarget& target, std::wstring path,
                                          const FileStamp& stamp, std::uint64_t size)
    : target_(target), path_(std::move(path)), stamp_(stamp) {
    target_.EnsureFolder(ParentOf(path_));
    if (target_.WritesNothing())
        return;
    CheckFreeSpace(ParentOf(path_), size);
    file_.emplace(path_, stamp_, clsNewFile::Place::Beside);
}

void clsExtractionTarget::LargeFile::Write(std::span<const std::byte> piece) {
    if (file_)
        file_->Write(piece);
}

AddedFile clsExtractionTarget::LargeFile::Keep(const MemberContent& content) {
    return target_.Take(path_, content, [this] { return file_->Keep(); });
}

void clsExtractionTarget::FinishFolders(
    const std::function<void(std::size_t member, std::uint32_t error)>& notSet) {
    std::ranges::stable_sort(stampedFolders_, std::ranges::greater(),
                             [](const StampedFolder& folder) { return folder.path.size(); });
    for (const auto& [path, member, stamp] : stampedFolders_) {
        const FileHandle folder(CreateFileW(
            path.c_str(), FILE_WRITE_ATTRIBUTES,
            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
            FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        std::uint32_t error = folder ? SetTimes(folder.Get(), stamp) : GetLastError();
        if (error == ERROR_SUCCESS &&
            (stamp.attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_ARCHIVE)) != 0 &&
            SetFileAttributesW(path.c_str(), stamp.attributes) == 0)
            error = GetLastError();
        if (error != ERROR_SUCCESS)
            notSet(member, error);
    }
    stampedFolders_.clear();
}

} // namespace vesk
