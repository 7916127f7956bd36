#include "catalogue/clsProgramArchives.h"

#include "TestFolder.h"
#include "base/Failure.h"

#include <filesystem>
#include <map>
#include <utility>

using namespace vesk;
using vesk::test::TestFolder;

TEST_CASE("a checksum is known once it was asked for, and no longer than the file stays the same") {
    const TestFolder folder;
    clsProgramArchives archives(folder.Path() + "\\");
    CHECK(archives.Facts("a.zip") == ArchiveFacts{true, false, std::nullopt});
    folder.Write("a.zip", "123456789");
    CHECK(archives.Known("a.zip") == ArchiveFacts{true, true, std::nullopt});
    CHECK(archives.Facts("a.zip") == ArchiveFacts{true, true, "CBF43926"});
    CHECK(archives.Known("a.zip").crc == "CBF43926");
    folder.Write("a.zip", "other");
    CHECK_FALSE(archives.Known("a.zip").crc);
    CHECK(archives.Facts("a.zip").crc != "CBF43926");
    folder.Write("a.zip", "");
    CHECK(archives.Facts("a.zip").crc == "");
    RemoveFile(folder / "a.zip");
    CHECK_FALSE(archives.Known("a.zip").isThere);
    CreateFolder(folder / "a.zip");
    CHECK_FALSE(archives.Facts("a.zip").isThere);
}

TEST_CASE("nothing outside the program folder is looked at") {
    const TestFolder folder;
    folder.Write("outside.zip", "x");
    CreateFolder(folder / "program");
    clsProgramArchives archives(folder / "program\\");
    CHECK(archives.Facts("..\\outside.zip") == ArchiveFacts{false, false, std::nullopt});
    CHECK(archives.Facts("") == ArchiveFacts{false, false, std::nullopt});
}

TEST_CASE("where there is a list, an archive's SHA-256 counts as well") {
    const TestFolder folder;
    const std::string path = folder.Path() + "\\";
    constexpr const char* kAbc = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
    folder.Write("a.zip", "abc");
    clsProgramArchives archives(path);
    CHECK_FALSE(UpdateSha256List(path, "a.zip"));
    CHECK_FALSE(FileExists(path + kSha256FileName));

    folder.Write(kSha256FileName, std::string(64, '0') + "  A.zip\n");
    CHECK(archives.Facts("a.zip").sha256Fault ==
          "SHA-256 differs, expected " + std::string(64, '0') + ", found " + kAbc);
    CHECK(UpdateSha256List(path, "a.zip"));
    CHECK(ReadWholeFile(path + kSha256FileName) == std::string(kAbc) + " *a.zip\n");
    CHECK_FALSE(archives.Known("a.zip").crc);
    CHECK(archives.Facts("a.zip").sha256Fault.empty());
    CHECK(clsSha256List(path).Problems().empty());
    folder.Write("a.zip", std::string(std::size_t{4} << 20, 'x'));
    int calls = 0;
    const auto count = [&calls] { ++calls; };
    CHECK(UpdateSha256List(path, "a.zip", count));
    const int callsOfDigest = std::exchange(calls, 0);
    CHECK(callsOfDigest > 0);
    CHECK(archives.Facts("a.zip", count).crc);
    CHECK(calls > callsOfDigest); // the checksum's as well

    if (const auto name = NarrowedExactly(L"\x00FC.zip"); GetACP() != CP_UTF8 && name) {
        folder.Write(kSha256FileName, std::string(64, '0') + "  \xC3\xBC.zip\n");
        CHECK(clsSha256List(path).Expected(*name) == std::string(64, '0'));
    }
    CHECK_THROWS_AS(UpdateSha256List(path, "none.zip"), Failure);
    for (const auto& [text, reason] : std::map<std::string, std::string>{
             {std::string("\377\376a\0", 4), "it is UTF-16 text"},
             {std::string(kLongestText + kRoomForEdits + 1, '#'), "it is larger than 16 MB"}}) {
        folder.Write(kSha256FileName, text);
        CHECK_THROWS_AS(UpdateSha256List(path, "a.zip"), Failure);
        CHECK(std::filesystem::file_size(path + kSha256FileName) == text.size());
        REQUIRE(clsSha256List(path).Problems().size() == 1);
        CHECK(clsSha256List(path).Problems()[0].reason == reason);
    }
}
