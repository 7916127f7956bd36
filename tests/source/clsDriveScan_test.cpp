#include "TestFolder.h"
#include "source/clsDriveScan.h"

#include <doctest/doctest.h>

using namespace vesk;
using vesk::test::TestFolder;

namespace {

/// Keeps what a scan reports and stops it after a number of entries.
class Recorder : public DriveScanEvents {
public:
    clsDriveScan* scan = nullptr;
    int stopAfter = -1;
    int entries = 0;
    std::vector<std::string> folders;
    std::vector<FoundSource> found;

    void OnFolder(const std::string& folder) override { folders.push_back(folder); }
    void OnFound(const FoundSource& source) override { found.push_back(source); }
    void OnEntryDone() override {
        if (++entries == stopAfter)
            scan->Stop();
    }
};

struct Scan {
    Recorder events;
    SourceState state;
    clsDriveScan scan{events, state};

    void Run(const TestFolder& drive) {
        events.scan = &scan;
        scan.Run({drive.Path() + "\\"});
    }
};

/// Writes the files of a Windows CD; NTDLL.DLL is a copy of this program's own system library, so
/// that it has a version, or a text without one.
void WriteCd(const TestFolder& drive, const std::string& i386, bool withVersion = true) {
    drive.Write(i386 + "\\LAYOUT.INF", "[Strings]\r\nproductname=\"Windows XP Home\"\r\n"
                                       "spcdtagfilei=\"tags\\win51.sp2\"\r\n");
    drive.Write(i386 + "\\SETUPLDR.BIN", "x");
    const std::string library = drive.Write(i386 + "\\NTDLL.DLL", "x");
    std::array<char, MAX_PATH> system{};
    GetSystemDirectoryA(system.data(), static_cast<UINT>(system.size()));
    if (withVersion)
        CopyFileOver(std::string(system.data()) + "\\kernel32.dll", library);
}

} // namespace

TEST_CASE("all drives but the floppy drives are searched") {
    CHECK(SearchableDrives(0b1011) == std::vector<std::string>{"D:\\"});
    CHECK(SearchableDrives(0xFFFFFFFF).size() == 24);
}

TEST_CASE("a scan finds every Windows CD below a drive") {
    const TestFolder drive;
    WriteCd(drive, "a\\cd\\I386");
    WriteCd(drive, "b\\I386");
    WriteCd(drive, "b\\lower\\i386");        // copies elsewhere are spelled so: no CD
    WriteCd(drive, ".hidden\\I386");         // names with a leading dot are passed over
    drive.Write("c\\I386\\LAYOUT.INF", "x"); // incomplete
    Scan scan;
    scan.Run(drive);
    REQUIRE(scan.events.found.size() == 2);
    CHECK(scan.events.found[0].rootFolder == drive / "a\\cd\\");
    CHECK(scan.events.found[0].productName == "Windows XP Home");
    CHECK(scan.events.found[0].servicePackTag == "sp2");
    CHECK(scan.events.found[1].rootFolder == drive / "b\\");
    CHECK(scan.state.valid);
    CHECK(scan.state.productCode.empty()); // set by a choice, not by a find
    CHECK(scan.events.folders.back() == drive.Path() + "\\");
}

TEST_CASE("a find without a version raises the flag but is not listed") {
    const TestFolder drive;
    WriteCd(drive, "I386", false);
    Scan scan;
    scan.Run(drive);
    CHECK(scan.events.found.empty());
    CHECK(scan.state.valid);
}

TEST_CASE("a stopped scan ends at its next entry and can start anew") {
    const TestFolder drive;
    for (const char* name : {"a", "b", "c", "d"})
        drive.Write(name, "x");
    WriteCd(drive, "z\\I386");
    Scan scan;
    scan.events.stopAfter = 3;
    scan.Run(drive);
    CHECK(scan.events.entries == 3);
    CHECK(scan.scan.IsStopped());
    CHECK_FALSE(scan.state.valid);
    scan.Run(drive);
    CHECK(scan.events.found.size() == 1);
}
