#pragma once

#include <windows.h>

#include <shlwapi.h>

#include <cstdio>
#include <memory>
#include <string>

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

/// What the platform's own reg program says about the test key and all below it, with the runs of
/// blanks between its columns shortened to one.
inline std::string RegQuery() {
    const std::string command = "reg query HKCU\\" + std::string(kTestKey) + " /s";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(_popen(command.c_str(), "rt"), &_pclose);
    std::string text;
    for (int c = 0; pipe && (c = std::fgetc(pipe.get())) != EOF;) {
        if (c != '\r' && !(c == ' ' && text.ends_with(' ')))
            text += static_cast<char>(c);
    }
    return text;
}

} // namespace vesk::test
