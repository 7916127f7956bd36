#pragma once

#include "base/UniqueHandle.h"
#include "base/clsPatience.h"
#include "base/modFile.h"
#include "base/modFolderEntries.h"
#include "base/modWide.h"

#include <windows.h>

#include <doctest/doctest.h>

#include <array>
#include <cstdint>
#include <string>

namespace vesk::test {

/// A fresh folder of one test case, removed with everything in it at the end.
class TestFolder {
public:
    TestFolder() {
        std::array<char, MAX_PATH> temp{};
        REQUIRE(GetTempPathA(static_cast<DWORD>(temp.size()), temp.data()) != 0);
        static int count = 0;
        do { // a test that was killed may have left its folder, and its number comes again
            path_ = std::string(temp.data()) + "vesk-" + std::to_string(GetCurrentProcessId()) +
                    "-" + std::to_string(++count);
        } while (FolderExists(path_));
        CreateFolderPath(path_);
        // What is refused for good is so at once, and takes nothing from the cases that follow.
        clsPatience::OfProgram() = clsPatience([] { return 0; }, [](std::uint32_t) {});
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder() {
        RemoveTree(Widen(path_));
        if (FolderExists(path_))
            MESSAGE("left behind: ", path_);
    }

    /// Removes a folder of a test with everything in it; links are removed and not entered.
    static void RemoveTree(const std::wstring& folder) {
        ForEachEntry(folder, [&](const FolderEntry& entry) {
            const std::wstring path = LongPath(folder + L"\\" + entry.name);
            SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
            if (entry.IsPlainFolder())
                RemoveTree(folder + L"\\" + entry.name);
            else if (entry.IsFolder())
                RemoveDirectoryW(path.c_str());
            else
                DeleteFileW(path.c_str());
        });
        RemoveDirectoryW(LongPath(folder).c_str());
    }

    /// The folder, without a trailing backslash.
    [[nodiscard]] const std::string& Path() const { return path_; }

    /// Full path of something in the folder.
    [[nodiscard]] std::string operator/(const std::string& name) const {
        return path_ + "\\" + name;
    }

    /// Writes a file, with the folders it needs, and returns its full path. The text may be empty.
    std::string Write(const std::string& name, const std::string& text) const {
        std::string path = *this / name;
        CreateFolderPath(path.substr(0, path.rfind('\\')));
        WriteCompleteFile(path, text);
        return path;
    }

private:
    std::string path_;
};

/// Opens a file that no other can open for as long as the handle lives.
inline FileHandle OpenExclusively(const std::string& path) {
    FileHandle file(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    REQUIRE(file);
    return file;
}

} // namespace vesk::test
