#include "archive/modCabJudge.h"

#include "archive/CabBuilder.h"
#include "archive/modCabDirectory.h"
#include "archive/modCabImage.h"
#include "base/Failure.h"

#include <doctest/doctest.h>

#include <functional>

using namespace vesk;
using namespace vesk::test;

namespace {

struct Judged {
    CabDirectory directory;
    std::vector<std::size_t> order;
    std::size_t blocks = 0; ///< Walked through.
};

Judged Judge(const std::string& bytes) {
    MemorySource source(bytes);
    ByteWindow window(source);
    Judged judged{ReadCabDirectory(window), {}, 0};
    JudgeCabData(window, judged.directory, [&] { ++judged.blocks; });
    judged.order = JudgeCabEntries(judged.directory);
    return judged;
}

/// The reason why the whole is not read, or each member's refusal, separated by "|".
std::string Verdict(const std::string& bytes) {
    try {
        std::string verdict;
        for (const CabEntry& entry : Judge(bytes).directory.entries)
            verdict +=
                (verdict.empty() ? "" : "|") + (entry.refusal.empty() ? "ok" : entry.refusal);
        return verdict;
    } catch (const Failure& failure) {
        CHECK(failure.number == 13);
        CHECK(failure.what() == std::string("Invalid data."));
        return "none: " + failure.reason;
    }
}

/// Two members in one folder with two blocks, and a third one in a folder of its own.
TestCab Good() {
    TestCab cab;
    cab.folders = {{.blocks = {{"aaaaaaaa"}, {"bbbbb"}}}, {.blocks = {{"ccc"}}}};
    cab.members = {{.name = "a", .size = 8},
                   {.name = "b", .size = 5, .offset = 8},
                   {.name = "c", .size = 3, .folder = 1}};
    return cab;
}

struct Row {
    const char* verdict;
    std::function<void(TestCab&)> change;
};

void CheckRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        TestCab cab = Good();
        row.change(cab);
        CHECK(Verdict(cab.Bytes()) == row.verdict);
    }
}

} // namespace

TEST_CASE("a cabinet whose headers cannot be read is refused with the reason") {
    CHECK(Verdict("") == "none: it is not a cabinet");
    CHECK(Verdict("this is no cabinet, only a text of some length") == "none: it is not a cabinet");
    CheckRows({
        {"none: it is not a cabinet", [](TestCab& cab) { cab.signature = "MSCG"; }},
        {"none: cabinets of format 2.3 are not supported",
         [](TestCab& cab) { cab.version = "\x03\x02"; }},
        {"none: it lists files but holds no data for them",
         [](TestCab& cab) { cab.folders.clear(); }},
        {"none: its list of files lies outside it",
         [](TestCab& cab) { cab.membersAt = 0xFFFFFFF0; }},
        {"none: its directory is cut short", [](TestCab& cab) { cab.folderCount = 0xFFFF; }},
        {"none: its directory is cut short", [](TestCab& cab) { cab.memberCount = 0xFFFF; }},
        {"none: a name in its directory has no end",
         [](TestCab& cab) { cab.members[1].name = std::string(5000, 'n'); }},
        {"none: a name in its directory has no end",
         [](TestCab& cab) { cab.next = std::string(5000, 'n'); }},
    });
}

TEST_CASE("what a reader gets along with is not refused") {
    CheckRows({
        {"ok|ok|ok", [](TestCab&) {}},
        {"ok|ok|ok", [](TestCab& cab) { cab.version = std::string("\0\1", 2); }},
        {"ok|ok|ok", [](TestCab& cab) { cab.members[1].name = std::string(255, 'n'); }},
        {"ok|ok|ok", [](TestCab& cab) { cab.next = "next.cab"; }},
        {"ok|ok|ok",
         [](TestCab& cab) {
             cab.headerReserve = "signature";
             cab.folderReserve = "fff";
             cab.blockReserve = "bbbb";
         }},
        {"ok|ok|ok", [](TestCab& cab) { cab.folders[0].blocks[1].checksum = 0; }},
        {"ok|ok|ok", [](TestCab& cab) { std::swap(cab.members[0], cab.members[2]); }},
        {"ok|ok|ok", [](TestCab& cab) { cab.members[0] = {.name = "a", .offset = 900}; }},
        {"", [](TestCab& cab) { cab.members.clear(), cab.folders.clear(); }},
    });
    CHECK(Verdict(Good().Bytes() + "appended: a signature, for example") == "ok|ok|ok");
}

TEST_CASE("damage is the trouble of those members only whose data it meets") {
    CheckRows({
        {"ok|its data is damaged|ok",
         [](TestCab& cab) { cab.folders[0].blocks[1].checksum = 0x12345678; }},
        {"its data is damaged|its data is damaged|ok",
         [](TestCab& cab) { cab.folders[0].blocks[0].checksum = 0x12345678; }},
        {"ok|its data is damaged|ok",
         [](TestCab& cab) { cab.folders[0].blocks[1].unpacked = 4; }}, // it is not compressed
        {"ok|its data is damaged|ok", [](TestCab& cab) { cab.folders[0].blocks[1].unpacked = 0; }},
        {"ok|its data is damaged|ok",
         [](TestCab& cab) { // into the next folder
             cab.folders[0].blocks[1].packed = cab.folders[0].blocks[1].unpacked = 10;
         }},
        {"ok|its data is damaged|ok",
         [](TestCab& cab) { cab.folders[0].blocks[1].packed = 0xFFFF; }},
        {"ok|ok|its data is cut short",
         [](TestCab& cab) {
             cab.folders[1].blocks[0].packed = cab.folders[1].blocks[0].unpacked = 9;
         }},
        {"ok|ok|its data is cut short", [](TestCab& cab) { cab.folders[1].dataAt = 0xFFFFFFFF; }},
        {"ok|the cabinet does not have enough data for it|ok",
         [](TestCab& cab) { cab.members[1].size = 6; }},
        {"ok|the cabinet does not have enough data for it|ok",
         [](TestCab& cab) { cab.members[1].offset = cab.members[1].size = 0xFFFFFFFF; }},
        {"ok|the cabinet does not have enough data for it|ok",
         [](TestCab& cab) { cab.folders[0].blockCount = 1; }},
        {"ok|the cabinet has no data for it|ok", [](TestCab& cab) { cab.members[1].folder = 2; }},
        {"ok|it begins in another cabinet|ok",
         [](TestCab& cab) { cab.members[1].folder = CabEntry::kFromPrevious; }},
        {"ok|it begins in another cabinet|ok",
         [](TestCab& cab) { cab.members[1].folder = CabEntry::kFromPreviousToNext; }},
        {"ok|it continues in another cabinet|ok",
         [](TestCab& cab) { cab.members[1].folder = CabEntry::kToNext; }},
        {"ok|it overlaps another member|ok", [](TestCab& cab) { cab.members[1].offset = 7; }},
        {"ok|ok|ok",
         [](TestCab& cab) {
             cab.members[1].offset = cab.members[0].offset;
             cab.members[1].size = cab.members[0].size;
         }},
        {"its data belongs to other members|its data belongs to other members|ok",
         [](TestCab& cab) {
             std::swap(cab.folders[0], cab.folders[1]);
             cab.members[0].folder = cab.members[1].folder = 1;
             cab.members[2].folder = 0;
             const std::string bytes = cab.Bytes();
             cab.folders[1].dataAt =
                 static_cast<std::uint32_t>(bytes.size() - 8 - 8 - 8 - 5 - 8 - 3);
         }},
        {"compression method 5 is not supported|compression method 5 is not supported|ok",
         [](TestCab& cab) { cab.folders[0].packing = 5; }},
        {"ok|ok|its settings for LZX compression are impossible",
         [](TestCab& cab) { cab.folders[1].packing = 22 << 8 | 3; }},
        {"ok|ok|its settings for Quantum compression are impossible",
         [](TestCab& cab) { cab.folders[1].packing = 9 << 8 | 1 << 4 | 2; }},
        {"ok|ok|ok", [](TestCab& cab) { cab.folders[1].packing = 21 << 8 | 3; }},
        {"ok|ok|ok", [](TestCab& cab) { cab.folders[1].packing = 21 << 8 | 7 << 4 | 2; }},
    });
}

TEST_CASE("many folders over the same bytes are not walked again and again") {
    TestCab cab;
    for (int i = 0; i < 500; ++i)
        cab.folders.push_back({.dataAt = 0, .blockCount = 0xFFFF});
    for (int i = 0; i < 2000; ++i)
        cab.folders[0].blocks.push_back({"x"});
    std::string bytes = cab.Bytes();
    const auto dataAt = static_cast<std::uint32_t>(bytes.size() - 2000 * 9);
    for (std::uint32_t i = 0; i < 500; ++i)
        cab.folders[i].dataAt = dataAt + i * 9;
    CHECK(Judge(cab.Bytes()).blocks == 2000);
    for (TestFolderData& folder : cab.folders)
        folder.dataAt = dataAt;
    CHECK(Judge(cab.Bytes()).blocks == 2000);
}

TEST_CASE("the reader is given one folder's sound blocks under headers of our own") {
    TestCab cab = Good();
    cab.headerReserve = "x";
    cab.blockReserve = "bb";
    cab.folders[0].blocks[1].checksum = 0x12345678;
    std::string bytes = cab.Bytes();
    const Judged judged = Judge(bytes);
    const CabFolder& folder = judged.directory.folders[0];
    const std::vector<std::size_t> entries{0};
    const std::string image =
        CabFolderImage(judged.directory, folder, entries) +
        bytes.substr(folder.dataAt, static_cast<std::size_t>(folder.goodPacked));
    const Judged again = Judge(image);
    REQUIRE(again.directory.folders.size() == 1);
    CHECK(again.directory.folders[0].blocks == 1);
    CHECK(again.directory.folders[0].goodUnpacked == 8);
    REQUIRE(again.directory.entries.size() == 1);
    CHECK(again.directory.entries[0].name == "0");
    CHECK(again.directory.entries[0].refusal.empty());
    CHECK(image.ends_with("bbaaaaaaaa"));
}
