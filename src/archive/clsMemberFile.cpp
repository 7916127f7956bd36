#include "archive/clsMemberFile.h"

#include "base/Failure.h"
#include "base/modSystemError.h"
#include "base/modWide.h"

namespace vesk {

namespace {

/// Up to this size a member is written at once, and only when it is complete.
constexpr std::size_t kHeldBack = std::size_t{256} * 1024;

std::string Shown(const std::wstring& path) {
    return Narrowed(WithoutLongPrefix(path));
}

std::wstring ParentPath(const std::wstring& path) {
    return path.substr(0, path.rfind(L'\\'));
}

} // namespace

clsMemberFile::clsMemberFile(clsCabTarget& target, std::wstring path, const MemberStamp& stamp,
                             std::vector<std::byte>& buffer)
    : target_(target),
      finalPath_(std::move(path)),
      path_(finalPath_),
      stamp_(stamp),
      pending_(buffer) {
    pending_.clear();
}

clsMemberFile::~clsMemberFile() {
    if (kept_ || !file_)
        return;
    file_.Reset();
    SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(path_.c_str());
}

void clsMemberFile::Write(std::span<const std::byte> bytes) {
    size_ += bytes.size();
    if (pending_.size() + bytes.size() > kHeldBack)
        Flush();
    pending_.insert(pending_.end(), bytes.begin(), bytes.end());
}

void clsMemberFile::Flush() {
    if (!file_)
        Open();
    if (pending_.empty())
        return;
    DWORD written = 0;
    if (WriteFile(file_.Get(), pending_.data(), static_cast<DWORD>(pending_.size()), &written,
                  nullptr) == 0)
        ThrowLastError("cannot write", Shown(path_));
    if (written < pending_.size()) // a full disk may take a part without an error
        ThrowSystemError(ERROR_DISK_FULL, "cannot write", Shown(path_));
    pending_.clear();
}

void clsMemberFile::Open() {
    target_.EnsureFolder(ParentPath(finalPath_));
    if (Create())
        return;
    const DWORD error = GetLastError();
    if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS)
        ThrowSystemError(error, "cannot create", Shown(finalPath_));
    CheckReplaceable();
    constexpr int kTries = 100; // names left behind by runs that were cut off
    for (int number = 0; number < kTries; ++number) {
        path_ = ParentPath(finalPath_) + L"\\~vesk" + std::to_wstring(number);
        if (Create())
            return;
        if (GetLastError() != ERROR_FILE_EXISTS && GetLastError() != ERROR_ALREADY_EXISTS)
            break;
    }
    ThrowLastError("cannot create", Shown(path_));
}

/// Only where nothing stands, not even a link whose target is missing: without the last flag the
/// system would create that target.
bool clsMemberFile::Create() {
    file_.Reset(CreateFileW(path_.c_str(), GENERIC_WRITE, FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                            stamp_.attributes | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    return static_cast<bool>(file_);
}

void clsMemberFile::CheckReplaceable() const {
    const DWORD attributes = GetFileAttributesW(finalPath_.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        ThrowLastError("cannot replace", Shown(finalPath_));
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        throw Failure(clsCabTarget::kLeftOut, "CabFile", "a link stands in its place");
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        throw Failure(ERROR_CANNOT_MAKE, "CabFile", "a folder stands in its place");
}

void clsMemberFile::Keep() {
    Flush();
    if (stamp_.modified)
        SetFileTime(file_.Get(), nullptr, nullptr, &*stamp_.modified);
    if (path_ != finalPath_)
        MoveIntoPlace();
    kept_ = true;
    file_.Reset();
    // A new file gets this attribute by itself.
    if ((stamp_.attributes & FILE_ATTRIBUTE_ARCHIVE) == 0)
        SetFileAttributesW(finalPath_.c_str(),
                           stamp_.attributes != 0 ? stamp_.attributes : FILE_ATTRIBUTE_NORMAL);
}

/// The file is open until it is in place: after a failure the destructor finds it.
void clsMemberFile::MoveIntoPlace() {
    const DWORD before = GetFileAttributesW(finalPath_.c_str());
    SetFileAttributesW(finalPath_.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (MoveFileExW(path_.c_str(), finalPath_.c_str(), MOVEFILE_REPLACE_EXISTING) != 0)
        return;
    const DWORD error = GetLastError();
    if (before != INVALID_FILE_ATTRIBUTES)
        SetFileAttributesW(finalPath_.c_str(), before);
    ThrowSystemError(error, "cannot replace", Shown(finalPath_));
}

} // namespace vesk
