#include "archive/clsCabTarget.h"

#include "base/Failure.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "base/modWide.h"

#include <vector>

namespace vesk {

namespace {

std::wstring ParentPath(const std::wstring& path) {
    return path.substr(0, path.rfind(L'\\'));
}

bool IsFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// The program's own AbsolutePath serves the system's ANSI functions and stops at their limit.
std::wstring AbsoluteFolder(const std::string& folder) {
    const std::wstring wide = Widen(WithoutTrailingBackslash(folder) + "\\");
    std::wstring path(32768, L'\0'); // the system's own limit
    const DWORD length =
        GetFullPathNameW(wide.c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr);
    if (length == 0 || length >= path.size())
        ThrowLastError("not a path:", folder);
    path.resize(length);
    path.erase(path.find_last_not_of(L'\\') + 1);
    return LongPath(path);
}

/// Links above the target folder are the user's own way to it.
void CreateWithParents(const std::wstring& path) {
    std::vector<std::wstring> missing;
    for (std::wstring level = path; !IsFolder(level); level = ParentPath(level)) {
        if (CreateDirectoryW(level.c_str(), nullptr) != 0)
            break;
        const DWORD error = GetLastError();
        if (error != ERROR_PATH_NOT_FOUND || level.find(L'\\') == std::wstring::npos)
            ThrowSystemError(error, "cannot create", Narrowed(WithoutLongPrefix(level)));
        missing.push_back(level);
    }
    for (auto level = missing.rbegin(); level != missing.rend(); ++level)
        if (CreateDirectoryW(level->c_str(), nullptr) == 0)
            ThrowLastError("cannot create", Narrowed(WithoutLongPrefix(*level)));
}

} // namespace

clsCabTarget::clsCabTarget(const std::string& folder)
    : folder_(AbsoluteFolder(folder)), last_(folder_) {
    CreateWithParents(folder_);
}

std::wstring clsCabTarget::PathOf(const std::wstring& name) const {
    return folder_ + L"\\" + name;
}

void clsCabTarget::EnsureFolder(const std::wstring& path) {
    if (path == last_)
        return;
    std::size_t end = folder_.size();
    while (end < path.size()) {
        end = std::min(path.find(L'\\', end + 1), path.size());
        EnsureLevel(path.substr(0, end));
    }
    last_ = path;
}

void clsCabTarget::EnsureLevel(const std::wstring& path) {
    if (known_.contains(path))
        return;
    if (CreateDirectoryW(path.c_str(), nullptr) == 0) {
        const DWORD error = GetLastError();
        const DWORD attributes = GetFileAttributesW(path.c_str());
        const std::string shown = Narrowed(WithoutLongPrefix(path));
        if (attributes == INVALID_FILE_ATTRIBUTES)
            ThrowSystemError(error, "cannot create", shown);
        if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
            throw Failure(kLeftOut, "CabFile", "a link stands on the way to it: " + shown);
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            throw Failure(ERROR_CANNOT_MAKE, "CabFile", "a file stands on the way to it: " + shown);
    }
    known_.insert(path);
}

} // namespace vesk
