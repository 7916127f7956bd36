#include "script/clsRegistry.h"

#include "base/UniqueHandle.h"
#include "base/modWide.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace vesk {

namespace {

using RegistryKey = UniqueHandle<::RegCloseKey, HKEY>;

constexpr std::uint32_t kClassesRoot = 0x80000000;
constexpr REGSAM kAccess = KEY_QUERY_VALUE | KEY_SET_VALUE | KEY_CREATE_SUB_KEY |
                           KEY_ENUMERATE_SUB_KEYS | KEY_NOTIFY | KEY_CREATE_LINK;
static_assert(kAccess == 0x3F);

HKEY RootKey(std::uint32_t root) {
    // Predefined keys are sign-extended where a handle has 64 bits.
    return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<std::int32_t>(root))); // NOLINT
}

RegistryKey OpenKey(std::uint32_t root, const std::string& keyPath, REGSAM access = kAccess) {
    RegistryKey key;
    HKEY opened = nullptr;
    const LSTATUS error = RegOpenKeyExA(RootKey(root), keyPath.c_str(), 0, access, &opened);
    if (error == ERROR_SUCCESS)
        key.Reset(opened);
    SetLastError(static_cast<DWORD>(error));
    return key;
}

/// Of any letter of the code page, which may have two bytes.
std::string InUpperCase(const std::string& text) {
    std::wstring wide = Widen(text);
    CharUpperBuffW(wide.data(), static_cast<DWORD>(wide.size()));
    return Narrowed(wide);
}

std::string CutAtNul(std::string_view buffer) {
    return std::string(buffer.substr(0, buffer.find('\0')));
}

/// Names of the keys below an open key, until the registry reports an error.
std::vector<std::string> SubKeyNames(const RegistryKey& key) {
    constexpr DWORD kNameSize = 16383;
    std::string buffer(kNameSize, '\0');
    std::vector<std::string> names;
    for (DWORD index = 0;; ++index) {
        DWORD length = kNameSize;
        if (RegEnumKeyExA(key.Get(), index, buffer.data(), &length, nullptr, nullptr, nullptr,
                          nullptr) != ERROR_SUCCESS)
            return names;
        names.push_back(CutAtNul({buffer.data(), length}));
    }
}

struct StoredValue {
    DWORD type = REG_NONE;
    std::string bytes;
};

StoredValue ReadValue(const RegistryKey& key, const std::string& name) {
    StoredValue value;
    DWORD size = 0;
    if (RegQueryValueExA(key.Get(), name.c_str(), nullptr, nullptr, nullptr, &size) !=
        ERROR_SUCCESS)
        return {};
    value.bytes.resize(size);
    if (RegQueryValueExA(key.Get(), name.c_str(), nullptr, &value.type,
                         reinterpret_cast<BYTE*>(value.bytes.data()), &size) != ERROR_SUCCESS)
        return {};
    value.bytes.resize(size);
    return value;
}

std::string Expanded(const std::string& text) {
    std::string buffer;
    for (DWORD size = 256;;) {
        buffer.resize(size);
        const DWORD needed = ExpandEnvironmentStringsA(text.c_str(), buffer.data(), size);
        if (needed == 0)
            return text;
        if (needed <= size)
            return CutAtNul(buffer);
        size = needed;
    }
}

std::string Hexadecimal(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

std::string Rendered(const StoredValue& value) {
    DWORD number = 0;
    switch (value.type) {
    case REG_SZ:
    case REG_MULTI_SZ:
        return CutAtNul(value.bytes);
    case REG_EXPAND_SZ:
        return Expanded(CutAtNul(value.bytes));
    case REG_DWORD:
        std::memcpy(&number, value.bytes.data(), std::min(sizeof number, value.bytes.size()));
        return std::to_string(static_cast<std::int32_t>(number));
    default:
        return Hexadecimal(value.bytes);
    }
}

} // namespace

std::optional<std::vector<std::string>> clsRegistry::EnumKeys(std::uint32_t root,
                                                              const std::string& keyPath) {
    const RegistryKey key = OpenKey(root, keyPath, KEY_READ);
    if (!key)
        return std::nullopt;
    return SubKeyNames(key);
}

void clsRegistry::EnumValues(std::uint32_t root, const std::string& keyPath,
                             std::vector<std::string>& names, std::vector<std::string>& values) {
    names.clear();
    values.clear();
    const RegistryKey key = OpenKey(root, keyPath);
    std::array<char, 255> name{};
    std::array<char, 255> data{};
    for (DWORD index = 0;; ++index) {
        DWORD nameLength = name.size();
        DWORD dataLength = data.size();
        // Longer data is an error like any other and ends the enumeration.
        if (RegEnumValueA(key.Get(), index, name.data(), &nameLength, nullptr, nullptr,
                          reinterpret_cast<BYTE*>(data.data()), &dataLength) != ERROR_SUCCESS)
            return;
        names.push_back(CutAtNul({name.data(), nameLength}));
        values.push_back(CutAtNul({data.data(), dataLength}));
    }
}

void clsRegistry::GetFileTypes(std::vector<std::string>& list) {
    list.clear();
    for (const std::string& name : SubKeyNames(OpenKey(kClassesRoot, ""))) {
        if (name.starts_with('.'))
            list.push_back(InUpperCase(name.substr(1)));
    }
}

bool clsRegistry::SetKeyValue(std::uint32_t root, const std::string& keyPath,
                              const std::string& valueName, const RegistryData& data,
                              std::uint32_t type) {
    // Without a key the data is still converted, and only the write fails.
    const RegistryKey key = OpenKey(root, keyPath);
    const DWORD openError = GetLastError();
    const bool isWritten = type == kRegistryText || type == kRegistryBinary ||
                           type == kRegistryNumber || type == kRegistryTextList;
    if (!isWritten) {
        SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
        return false;
    }
    const std::string bytes = RegistryBytes(data, type);
    const LSTATUS error = RegSetValueExA(key.Get(), valueName.c_str(), 0, type,
                                         reinterpret_cast<const BYTE*>(bytes.data()),
                                         static_cast<DWORD>(bytes.size()));
    // Why the key could not be opened tells more than that there is no key to write to.
    SetLastError(openError != ERROR_SUCCESS ? openError : static_cast<DWORD>(error));
    return (error == ERROR_SUCCESS) != (type == kRegistryBinary);
}

std::string clsRegistry::QueryValue(std::uint32_t root, const std::string& keyPath,
                                    const std::string& valueName) {
    return Rendered(ReadValue(OpenKey(root, keyPath), valueName));
}

void clsRegistry::DeleteValue(std::uint32_t root, const std::string& keyPath,
                              const std::string& valueName) {
    RegDeleteValueA(OpenKey(root, keyPath).Get(), valueName.c_str());
}

void clsRegistry::DeleteKey(std::uint32_t root, const std::string& keyPath,
                            const std::string& subKey) {
    RegDeleteKeyA(OpenKey(root, keyPath).Get(), subKey.c_str());
}

bool clsRegistry::CreateNewKey(std::uint32_t root, const std::string& keyPath) {
    HKEY created = nullptr;
    const LSTATUS error =
        RegCreateKeyExA(RootKey(root), keyPath.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        kAccess, nullptr, &created, nullptr);
    if (error == ERROR_SUCCESS)
        RegistryKey{created}.Reset();
    SetLastError(static_cast<DWORD>(error));
    return error == ERROR_SUCCESS;
}

bool clsRegistry::IsPathEmpty(std::uint32_t root, const std::string& keyPath) {
    std::vector<std::string> names;
    std::vector<std::string> values;
    EnumValues(root, keyPath, names, values);
    return std::ranges::all_of(names, &std::string::empty);
}

} // namespace vesk
