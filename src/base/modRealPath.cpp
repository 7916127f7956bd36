#include "base/modRealPath.h"

#include "base/UniqueHandle.h"
#include "base/modSystemLibrary.h"
#include "base/modWide.h"

#include <windows.h>

#include <winternl.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

namespace vesk {

namespace {

constexpr std::size_t kLongest = 32768; // the system's own limit

bool Exists(const std::wstring& path) {
    return GetFileAttributesW(LongPath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

/// Length of the part of a path that exists.
std::size_t ExistingLength(const std::wstring& path) {
    std::size_t length = path.size();
    while (length > 0 && !Exists(path.substr(0, length))) {
        const std::size_t backslash = path.rfind(L'\\', length - 1);
        if (backslash == std::wstring::npos)
            return 0;
        // A drive's root needs its backslash: without it the drive's current folder is meant.
        const bool isRoot = backslash == 2 && path[1] == L':' && length > 3;
        length = isRoot ? backslash + 1 : backslash;
    }
    return length;
}

/// Where an existing path leads; the path itself when the system does not say.
std::wstring Resolved(const std::wstring& path) {
    const FileHandle file(CreateFileW(LongPath(path).c_str(), 0,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    const std::wstring real = file ? RealPathOf(file.Get()) : std::wstring();
    return real.empty() ? WithLongNames(path) : real;
}

} // namespace

std::wstring WithLongNames(const std::wstring& path) {
    std::wstring names(kLongest, L'\0');
    // Wine leaves a path with the prefix as it is.
    const std::wstring asked = path.size() < MAX_PATH ? path : LongPath(path);
    names.resize(GetLongPathNameW(asked.c_str(), names.data(), kLongest));
    return names.empty() ? path : WithoutLongPrefix(names);
}

namespace {

/// The path without its prefix; empty for one that leads past all drives and shares.
std::wstring UsualPath(const std::wstring& path) {
    const std::wstring usual = WithoutLongPrefix(path);
    const bool isUsual = usual.starts_with(L"\\\\") || (usual.size() > 2 && usual[1] == L':');
    return isUsual ? usual : std::wstring();
}

/// What the system's interface says; before Windows Vista it has nothing to say.
std::wstring FinalPathOf(HANDLE handle) {
    using Function = DWORD(WINAPI*)(HANDLE, LPWSTR, DWORD, DWORD);
    static const auto function =
        LoadedFunction<Function>("kernel32.dll", "GetFinalPathNameByHandleW");
    if (function == nullptr)
        return {};
    std::wstring real(MAX_PATH, L'\0');
    DWORD length = function(handle, real.data(), MAX_PATH, 0);
    if (length >= MAX_PATH) { // then it is the size that is needed
        real.resize(kLongest);
        length = function(handle, real.data(), kLongest, 0);
    }
    real.resize(length < real.size() ? length : 0);
    return UsualPath(real);
}

std::wstring DeviceNameOf(HANDLE handle) {
    struct Name {
        UNICODE_STRING head;
        std::array<wchar_t, kLongest> letters;
    };
    static const auto function =
        LoadedFunction<decltype(&NtQueryObject)>("ntdll.dll", "NtQueryObject");
    const auto name = std::make_unique<Name>();
    if (function == nullptr ||
        function(handle, ObjectNameInformation, name.get(), sizeof(Name), nullptr) < 0)
        return {};
    return {name->head.Buffer, name->head.Length / sizeof(wchar_t)};
}

} // namespace

std::wstring PathOfDeviceName(const std::wstring& name) {
    constexpr std::wstring_view kPath = L"\\??\\";
    if (name.starts_with(kPath))
        return UsualPath(L"\\\\?\\" + name.substr(kPath.size()));
    for (std::wstring drive = L"A:"; drive[0] <= L'Z'; ++drive[0]) {
        std::array<wchar_t, MAX_PATH> letters{};
        const DWORD length = QueryDosDeviceW(drive.c_str(), letters.data(), letters.size());
        const std::wstring device = std::wstring(letters.data()) + L"\\";
        if (length != 0 && name.starts_with(device))
            return drive + name.substr(device.size() - 1);
    }
    return {};
}

std::wstring RealPathOf(void* handle) {
    const std::wstring path = FinalPathOf(handle);
    // Before Windows Vista, and in Wine where the path is longer than the usual limit.
    return path.empty() ? PathOfDeviceName(DeviceNameOf(handle)) : path;
}

std::wstring RealPath(const std::wstring& path) {
    const std::size_t length = ExistingLength(path);
    if (length == 0)
        return path;
    const std::wstring real = Resolved(path.substr(0, length));
    const std::wstring missing = path.substr(length);
    if (real.ends_with(L'\\') && missing.starts_with(L'\\'))
        return real + missing.substr(1);
    return real.ends_with(L'\\') || missing.empty() || missing.starts_with(L'\\')
               ? real + missing
               : real + L"\\" + missing;
}

} // namespace vesk
