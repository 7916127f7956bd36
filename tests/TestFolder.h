#pragma once

#include "base/modFile.h"

#include <windows.h>

#include <doctest/doctest.h>

#include <array>
#include <string>

namespace vesk::test {

/// A fresh folder of one test case, removed with everything in it at the end.
class TestFolder {
public:
    TestFolder() {
        std::array<char, MAX_PATH> temp{};
        REQUIRE(GetTempPathA(static_cast<DWORD>(temp.size()), temp.data()) != 0);
        static int count = 0;
        path_ = std::string(temp.data()) + "vesk-" + std::to_string(GetCurrentProcessId()) + "-" +
                std::to_string(++count);
        CreateFolderPath(path_);
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder() {
        try {
            RemoveFolder(path_);
        } catch (const std::exception&) {
            MESSAGE("left behind: ", path_);
        }
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

} // namespace vesk::test
