#include "source/modSourceFolder.h"

#include "ExpectedText.h"
#include "base/modFile.h"
#include "source/WindowsCd.h"

using namespace vesk;
using namespace vesk::test;

TEST_CASE("product and service pack are read from the source") {
    CheckLines("source_products", [](const std::string& line) {
        const auto words = Split(line, '|'); // what LAYOUT.INF names: the product, a file
        const TestFolder folder;
        WriteCd(folder, "I386", words.at(0), words.at(1));
        SourceState state;
        const SourceCheck check = CheckSourceFolder(folder.Path(), state);
        CHECK((check.usable && state.valid));
        CHECK(check.path == folder.Path() + "\\");
        return check.productLabel + "; product " + state.productCode + ", service pack " +
               state.servicePackCode;
    });
}

TEST_CASE("what is no source changes nothing; a file, and a drive's letter, stand for a folder") {
    const TestFolder folder;
    WriteCd(folder, "good\\I386", "Windows XP Professional", "a.sp1");
    WriteCd(folder, "bad\\I386");
    RemoveFile(folder / "bad\\I386\\SETUPLDR.BIN");
    const std::string root = folder.Path().substr(0, 3);
    const std::string inRoot = root + "vesk-" + std::to_string(GetCurrentProcessId()) + ".txt";
    WriteCompleteFile(inRoot, "x");
    SourceState state;
    for (const bool before : {false, true}) {
        for (const auto& [path, taken] : {
                 std::pair{folder / "bad", folder / "bad\\"},
                 {folder / "good\\I386\\LAYOUT.INF", folder / "good\\I386\\"},
                 {folder / "missing", folder / "missing"},
                 {folder / "good\\missing.txt", folder / "good\\missing.txt"},
                 {inRoot, root},
                 {root, root},
                 {root.substr(0, 2), root},
             }) {
            CAPTURE(path);
            const SourceCheck check = CheckSourceFolder(path, state);
            CHECK_FALSE(check.usable);
            CHECK(check.path == taken);
            CHECK(check.productLabel.empty());
            CHECK(state.valid == before); // a source chosen earlier still counts
        }
        CHECK(CheckSourceFolder(folder / "good", state).usable);
        CHECK(state.servicePackCode == "1");
    }
    WriteCd(folder, "large\\I386", std::string(kLongestText, 'x')); // each value is a reading of it
    CHECK(CheckSourceFolder(folder / "large", state).unread == "it is larger than 16 MB");
    RemoveFile(inRoot);
    const FileHandle inUse = OpenExclusively(folder / "good\\I386\\LAYOUT.INF");
    const SourceCheck unread = CheckSourceFolder(folder / "good", state);
    CHECK((unread.usable && unread.unread == "sharing violation"));
}
