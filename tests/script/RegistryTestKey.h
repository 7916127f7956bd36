#pragma once

#include <windows.h>

#include <shlwapi.h>

namespace vesk::test {

inline constexpr const char* kTestKey = "Software\\VeskBuilderTest";

/// A key below HKEY_CURRENT_USER that a test may fill, removed with everything in it at the end.
class RegistryTestKey {
public:
    RegistryTestKey() {
        Remove();
        HKEY key = nullptr;
        RegCreateKeyA(HKEY_CURRENT_USER, kTestKey, &key);
        RegCloseKey(key);
    }
    RegistryTestKey(const RegistryTestKey&) = delete;
    RegistryTestKey& operator=(const RegistryTestKey&) = delete;
    ~RegistryTestKey() { Remove(); }

private:
    static void Remove() {
        SHDeleteKeyA(HKEY_CURRENT_USER, kTestKey);
        // Some systems make what is asked for here, and keep it as long as they run.
        SHDeleteKeyA(HKEY_DYN_DATA, kTestKey);
    }
};

} // namespace vesk::test
