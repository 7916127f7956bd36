#include "base/modFile.h"

#include "TestFolder.h"
#include "base/Failure.h"
#include "base/modText.h"

using namespace vesk;
using namespace vesk::test;

TEST_CASE("whole files: bytes survive, read-only files are rewritten, an old tail stays") {
    const TestFolder folder;
    const std::string path = folder.Write("a.txt", std::string("x\r\n\0\xE4", 5));
    CHECK(ReadWholeFile(path) == std::string("x\r\n\0\xE4", 5));
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
    WriteWholeFile(path, "AB");
    CHECK(ReadWholeFile(path) == std::string("AB\n\0\xE4", 5));
    WriteWholeFile(path, "");
    CHECK(ReadWholeFile(path).size() == 5);
    CHECK(ReadWholeFile(folder / "none").empty());
    CHECK(ReadWholeFile(folder.Path()).empty());
}

TEST_CASE("what is there and cannot be read does not pass for an empty file") {
    const TestFolder folder;
    const std::string path = folder.Write("a.txt", "text");
    CHECK(ReadFileIfThere(path) == "text");
    CHECK(ReadFileIfThere(folder / "none").empty());
    CHECK(ReadFileIfThere(folder / "none\\none").empty());
    CHECK_THROWS_AS(ReadFileIfThere(folder.Path()), Failure);
    RequireTextSize(folder.Write("long.txt", std::string(kLongestText, '#')));
    folder.Write("long.txt", std::string(kLongestText + kRoomForEdits, '#'));
    CHECK_THROWS_AS(RequireTextSize(folder / "long.txt"), Failure);
    CHECK(ReadFileIfThere(folder / "long.txt").size() == kLongestText + kRoomForEdits);
    folder.Write("long.txt", std::string(kLongestText + kRoomForEdits + 1, '#'));
    CHECK_THROWS_AS(ReadFileIfThere(folder / "long.txt"), Failure);
    CHECK(WhyUnreadable(folder / "long.txt") == "it cannot be read in full");
    const FileHandle lock = OpenExclusively(path);
    CHECK_THROWS_AS(ReadFileIfThere(path), Failure);
    CHECK(ReadWholeFile(path).empty());
    RequireTextSize(path);
}

TEST_CASE("what stands under a path") {
    const TestFolder folder;
    const std::string path = folder.Write("a.txt", "text");
    CHECK(StateOf(path) == PathState::File);
    CHECK(StateOf(folder.Path()) == PathState::Folder);
    for (const char* missing : {"b.txt", "b\\a.txt", "a?b"})
        CHECK(StateOf(folder / missing) == PathState::Nothing);
    CHECK_THROWS_AS(CreateFolderPath(path + "\\b"), Failure);
}

TEST_CASE("a complete file replaces the old one, or leaves it as it was") {
    const TestFolder folder;
    const std::string path = folder.Write("a.ini", "a long old text");
    const std::string beside = path + ".vesk-new";
    const std::string outside = folder.Write("outside", "x");
    REQUIRE(CreateHardLinkA(beside.c_str(), outside.c_str(), nullptr) != 0);
    WriteCompleteFile(path, "new");
    CHECK(ReadWholeFile(path) == "new");
    {
        const FileHandle lock = OpenExclusively(path);
        SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
        CHECK_THROWS_AS(WriteCompleteFile(path, "newer"), Failure);
        CHECK((GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_READONLY) != 0);
        CHECK_THROWS_AS(RemoveFile(path), Failure);
        CHECK((GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_READONLY) != 0);
    }
    CHECK(ReadWholeFile(path) == "new");
    const std::string source = folder.Write("other", "copied");
    SetFileAttributesA(source.c_str(), FILE_ATTRIBUTE_READONLY);
    const auto isRefusedWhileInUse = [&](const std::string& inUse) {
        const FileHandle lock = OpenExclusively(inUse);
        CHECK_THROWS_AS(WriteCompleteFile(path, "newer"), Failure);
        CHECK_THROWS_AS(CopyCompleteFile(source, path), Failure);
    };
    isRefusedWhileInUse(path);
    std::size_t files = 0;
    ForEachEntry(Widen(folder.Path()), [&](const FolderEntry&) { ++files; });
    CHECK(files == 3);
    isRefusedWhileInUse(folder.Write("a.ini.vesk-new", ""));
    CHECK(ReadWholeFile(path) == "new");
    RemoveFile(beside);
    REQUIRE(CreateHardLinkA(beside.c_str(), outside.c_str(), nullptr) != 0);
    CopyCompleteFile(source, path);
    CHECK(ReadWholeFile(path) == "copied");
    CHECK_FALSE(FileExists(beside));
    CHECK(ReadWholeFile(outside) == "x");
}

TEST_CASE("absolute paths") {
    const TestFolder folder;
    const std::string before = AbsolutePath(".");
    REQUIRE(SetCurrentDirectoryA(folder.Path().c_str()));
    for (const std::string& drive :
         {UpperCase(folder.Path().substr(0, 2)), LowerCase(folder.Path().substr(0, 2))})
        CHECK(AbsolutePath(drive) == drive + "\\");
    CHECK(AbsolutePath("x") == folder / "x");
    SetCurrentDirectoryA(before.c_str());
    CHECK(AbsolutePath("C:\\a\\..\\\\b/c.\\.") == "C:\\b\\c");
    CHECK(AbsolutePath("\\\\?\\C:\\a") == "\\\\?\\C:\\a");
    CHECK(AbsolutePath("\\\\server\\share\\..") == "\\\\server\\share\\");
    CHECK_THROWS_AS(AbsolutePath(""), Failure);
}
