#include "catalogue/clsProgramArchives.h"

#include "TestFolder.h"

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
