#include "source/modSourceFolder.h"

#include "TestFolder.h"

using namespace vesk;
using vesk::test::TestFolder;

namespace {

std::string Layout(const std::string& product, const std::string& tag) {
    return "[Strings]\r\nproductname = \"" + product + "\"\r\n" +
           (tag.empty() ? "" : "spcdtagfilei = \"" + tag + "\"\r\n");
}

void WriteSource(const TestFolder& folder, const std::string& layout) {
    folder.Write("I386\\LAYOUT.INF", layout);
    folder.Write("I386\\NTDLL.DLL", "x");
    folder.Write("I386\\SETUPLDR.BIN", "x");
}

} // namespace

TEST_CASE("product and service pack are read from the source") {
    struct Row {
        const char *product, *tag, *label, *productCode, *servicePackCode;
    };
    for (const Row& row : {Row{"Microsoft Windows XP Professional", "\\xpsp2.sp2",
                               "Microsoft Windows XP Professional SP2", "1", "2"},
                           Row{"Microsoft Windows XP Home Edition", "x.SP3",
                               "Microsoft Windows XP Home Edition SP3", "0", "3"},
                           Row{"Windows Server 2003", "", "Windows Server 2003 ", "2", ""},
                           Row{"Windows 2000", "xpsp.cat", "Windows 2000 CAT", "", ""}}) {
        CAPTURE(row.product);
        const TestFolder folder;
        WriteSource(folder, Layout(row.product, row.tag));
        SourceState state;
        const SourceCheck check = CheckSourceFolder(folder.Path(), state);
        CHECK(check.usable);
        CHECK(check.path == folder.Path() + "\\");
        CHECK(check.productLabel == row.label);
        CHECK(state.valid);
        CHECK(state.productCode == row.productCode);
        CHECK(state.servicePackCode == row.servicePackCode);
    }
}

TEST_CASE("a folder that is no source changes nothing; a file stands for its folder") {
    const TestFolder good;
    WriteSource(good, Layout("Windows XP Professional", "a.sp1"));
    const TestFolder bad;
    bad.Write("I386\\LAYOUT.INF", "x");
    bad.Write("I386\\NTDLL.DLL", "x");
    SourceState state;
    CHECK_FALSE(CheckSourceFolder(bad.Path(), state).usable);
    CHECK_FALSE(state.valid);
    CheckSourceFolder(good.Path(), state);
    const SourceCheck check = CheckSourceFolder(bad.Path(), state);
    CHECK_FALSE(check.usable);
    CHECK(check.productLabel.empty());
    CHECK(state.valid);
    CHECK(state.servicePackCode == "1");
    const SourceCheck file = CheckSourceFolder(good / "I386\\LAYOUT.INF", state);
    CHECK_FALSE(file.usable);
    CHECK(file.path == (good / "I386\\"));
}

TEST_CASE("a path at which there is nothing is no source and stays as it is") {
    const TestFolder folder;
    WriteSource(folder, Layout("Windows XP Professional", "a.sp1"));
    SourceState state;
    for (const std::string& path : {folder / "missing", folder / "I386\\missing.txt"}) {
        const SourceCheck check = CheckSourceFolder(path, state);
        CHECK_FALSE(check.usable);
        CHECK(check.path == path);
    }
    CHECK_FALSE(state.valid);
}

TEST_CASE("a file in a drive's root stands for that root") {
    const TestFolder folder;
    WriteSource(folder, Layout("Windows XP Home", "a.sp1"));
    folder.Write("setup.exe", "x");
    // A drive of its own: a letter that the machine does not use.
    std::string drive = "Y:";
    while (drive[0] > 'D' && (GetLogicalDrives() >> (drive[0] - 'A') & 1) != 0)
        --drive[0];
    REQUIRE(DefineDosDeviceA(0, drive.c_str(), folder.Path().c_str()));
    SourceState state;
    const SourceCheck check = CheckSourceFolder(drive + "\\setup.exe", state);
    const SourceCheck bare = CheckSourceFolder(drive, state);
    DefineDosDeviceA(DDD_REMOVE_DEFINITION, drive.c_str(), nullptr);
    CHECK(check.path == drive + "\\");
    CHECK(check.usable);
    CHECK(bare.path == drive + "\\");
}
