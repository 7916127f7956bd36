#include "archive/clsNewFile.h"

#include "archive/ArchiveProblem.h"
#include "base/clsPatience.h"
#include "base/modFolderEntries.h"
#include "base/modSystemError.h"
#include "base/modWide.h"

#include <algorithm>

namespace vesk {

namespace {

/// @throws Failure for the thread's last error
[[noreturn]] void ThrowFor(const char* what, const std::wstring& path) {
    const DWORD error = GetLastError();
    ThrowSystemError(error, what, Narrowed(WithoutLongPrefix(path)));
}

/// Whether an old file may be replaced. @throws ArchiveProblem for what is no plain file, or
/// another one
void CheckReplaceable(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        ThrowFor("cannot replace", path);
    if (IsLink(path, attributes))
        throw ArchiveProblem("there is a link in its place");
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        throw ArchiveProblem("there is a folder in its place");
    if (IsShortName(path))
        throw ArchiveProblem("its name is the short name of another file");
}

/// A file that is in use is refused to a move without saying so.
DWORD WhyNotReplaced(const std::wstring& path, DWORD error) {
    const FileHandle file(
        CreateFileW(path.c_str(), DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    return !file && GetLastError() == ERROR_SHARING_VIOLATION ? ERROR_SHARING_VIOLATION : error;
}

} // namespace

bool IsShortName(const std::wstring& path) {
    const std::wstring name = path.substr(path.rfind(L'\\') + 1);
    if (name.find(L'~') == std::wstring::npos)
        return false;
    WIN32_FIND_DATAW found{};
    const FindHandle search(FindFirstFileW(path.c_str(), &found));
    return search && lstrcmpiW(found.cFileName, name.c_str()) != 0;
}

std::uint32_t SetTimes(HANDLE handle, const FileStamp& stamp) {
    const auto pointer = [](const std::optional<FILETIME>& time) {
        return time ? &*time : nullptr;
    };
    if (!stamp.modified && !stamp.accessed && !stamp.created)
        return stamp.error;
    const BOOL set = SetFileTime(handle, pointer(stamp.created), pointer(stamp.accessed),
                                 pointer(stamp.modified));
    return set != FALSE ? stamp.error : GetLastError();
}

clsNewFile::clsNewFile(const std::wstring& path, const FileStamp& stamp, Place place)
    : finalPath_(path), path_(path), stamp_(stamp) {
    if (place == Place::Beside) {
        if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES)
            CheckReplaceable(path);
        CreateBeside();
    } else if (!CreatePatiently(path, [this] { return Create(); }) &&
               GetLastError() == ERROR_FILE_EXISTS) {
        CheckReplaceable(path);
        CreateBeside();
    }
    if (!file_)
        ThrowFor("cannot create", finalPath_);
}

clsNewFile::~clsNewFile() {
    if (kept_ || !file_)
        return;
    file_.Reset();
    SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(path_.c_str());
}

void clsNewFile::Write(std::span<const std::byte> content) {
    constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;
    while (!content.empty()) {
        const auto part = static_cast<DWORD>(std::min(content.size(), kMostAtOnce));
        DWORD written = 0;
        if (WriteFile(file_.Get(), content.data(), part, &written, nullptr) == 0)
            ThrowFor("cannot write", finalPath_);
        if (written == 0)
            ThrowSystemError(ERROR_DISK_FULL, "cannot write",
                             Narrowed(WithoutLongPrefix(finalPath_)));
        content = content.subspan(written);
    }
}

std::uint32_t clsNewFile::Keep() {
    const std::uint32_t timeError = SetTimes(file_.Get(), stamp_);
    if (path_ != finalPath_)
        MoveIntoPlace();
    kept_ = true;
    // A new file gets this attribute by itself.
    if ((stamp_.attributes & FILE_ATTRIBUTE_ARCHIVE) == 0 &&
        SetFileAttributesW(finalPath_.c_str(),
                           stamp_.attributes != 0 ? stamp_.attributes : FILE_ATTRIBUTE_NORMAL) == 0)
        return GetLastError();
    return timeError;
}

/// Only where nothing stands, not even a link whose target is missing: without the last flag the
/// system would create that target.
bool clsNewFile::Create() {
    file_.Reset(CreateFileW(path_.c_str(), GENERIC_WRITE, FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                            stamp_.attributes | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    return static_cast<bool>(file_);
}

void clsNewFile::CreateBeside() {
    constexpr int kTries = 100; // names left behind by runs that were cut off
    const std::wstring folder = finalPath_.substr(0, finalPath_.rfind(L'\\'));
    for (int number = 0; number < kTries; ++number) {
        path_ = folder + L"\\~vesk" + std::to_wstring(number);
        if (Create() || GetLastError() != ERROR_FILE_EXISTS)
            return;
    }
}

/// The file is open until it is in place: after a failure the destructor finds it.
void clsNewFile::MoveIntoPlace() {
    const DWORD old = GetFileAttributesW(finalPath_.c_str());
    const bool readOnly = old != INVALID_FILE_ATTRIBUTES && (old & FILE_ATTRIBUTE_READONLY) != 0;
    if (readOnly)
        SetFileAttributesW(finalPath_.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (TryPatiently([this] {
            return MoveFileExW(path_.c_str(), finalPath_.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
        }))
        return;
    const DWORD error = WhyNotReplaced(finalPath_, GetLastError());
    if (readOnly) // it stays as it was
        SetFileAttributesW(finalPath_.c_str(), old);
    ThrowSystemError(error, "cannot replace", Narrowed(WithoutLongPrefix(finalPath_)));
}

} // namespace vesk
