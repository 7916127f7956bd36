#include "source/clsDriveScan.h"

#include "source/WindowsCd.h"

using namespace vesk;
using namespace vesk::test;

namespace {

/// Keeps what is reported, and stops after a number of entries.
struct Scan : DriveScanEvents {
    SourceState state;
    clsDriveScan scan{*this, state};
    int stopAfter = -1;
    int entries = 0;
    std::vector<std::string> folders;
    std::vector<FoundSource> found;

    void Run(const TestFolder& drive) { scan.Run({drive.Path() + "\\"}); }
    void OnFolder(const std::string& folder) override { folders.push_back(folder); }
    void OnFound(const FoundSource& source) override { found.push_back(source); }
    void OnEntryDone() override {
        if (++entries == stopAfter)
            scan.Stop();
    }
};

} // namespace

TEST_CASE("all drives but the floppy drives are searched") {
    CHECK(SearchableDrives(0b1011) == std::vector<std::string>{"D:\\"});
    CHECK(SearchableDrives(0xFFFFFFFF).size() == 24);
}

TEST_CASE("a scan finds every Windows CD below a drive") {
    const TestFolder drive;
    // A copy in "i386" is no CD, nor are incomplete ones; names with a leading dot are passed over.
    for (const char* name : {"a\\cd\\I386", "b\\I386", "b\\lower\\i386", ".hidden\\I386"})
        WriteCd(drive, name, "Windows XP Home", "tags\\win51.sp2", true);
    drive.Write("c\\I386\\LAYOUT.INF", "x");
    Scan scan;
    scan.Run(drive);
    REQUIRE(scan.found.size() == 2);
    CHECK(scan.found[0].rootFolder == drive / "a\\cd\\");
    CHECK(scan.found[0].productName == "Windows XP Home");
    CHECK(scan.found[0].servicePackTag == "sp2");
    CHECK(scan.found[1].rootFolder == drive / "b\\");
    CHECK(scan.state.valid);
    CHECK(scan.state.productCode.empty()); // set by a choice, not by a find
    CHECK(scan.folders.back() == drive.Path() + "\\");
}

TEST_CASE("a stopped scan ends at its next entry and can start anew") {
    const TestFolder drive;
    for (const char* name : {"a", "b", "c", "d"})
        drive.Write(name, "x");
    WriteCd(drive, "z\\I386");
    Scan scan;
    scan.stopAfter = 3;
    scan.Run(drive);
    CHECK(scan.entries == 3);
    CHECK(scan.scan.IsStopped());
    CHECK_FALSE(scan.state.valid);
    scan.Run(drive);
    CHECK(scan.state.valid);
    CHECK(scan.found.empty()); // it has no version
}
