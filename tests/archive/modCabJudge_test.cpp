#include "archive/modCabJudge.h"

#include "archive/ArchiveContents.h"
#include "archive/CabBuilder.h"

#include <doctest/doctest.h>

#include <functional>

using namespace vesk;
using namespace vesk::test;

namespace {

/// Two members in one folder with two blocks, and a third one in a folder of its own.
TestCab Good() {
    TestCab cab;
    cab.folders = {{.blocks = {{"aaaaaaaa"}, {"bbbbb"}}}, {.blocks = {{"ccc"}}}};
    cab.members = {{.name = "a", .size = 8},
                   {.name = "b", .size = 5, .offset = 8},
                   {.name = "c", .size = 3, .folder = 1}};
    return cab;
}

const std::string kGood = "a=aaaaaaaa|b=bbbbb|c=ccc";

struct Row {
    std::string told;
    std::function<void(TestCab&)> change;
};

void CheckRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        TestCab cab = Good();
        row.change(cab);
        CHECK(ReadCab(cab.Bytes()).Told() == row.told);
    }
}

} // namespace

TEST_CASE("a cabinet whose headers cannot be read is refused with the reason") {
    CHECK(ReadCab("").Told() == "it is not a cabinet: ");
    CHECK(ReadCab("this is no cabinet, only a text of some length").Told() ==
          "it is not a cabinet: ");
    CheckRows({
        {"it is not a cabinet: ", [](TestCab& cab) { cab.signature = "MSCG"; }},
        {"cabinets of format 2.3 are not supported: ",
         [](TestCab& cab) { cab.version = "\x03\x02"; }},
        {"it lists files but holds no data for them: ", [](TestCab& cab) { cab.folders.clear(); }},
        {"its list of files lies outside it: ", [](TestCab& cab) { cab.membersAt = 0xFFFFFFF0; }},
        {"its directory is cut short: ", [](TestCab& cab) { cab.folderCount = 0xFFFF; }},
        {"its directory is cut short: ", [](TestCab& cab) { cab.memberCount = 0xFFFF; }},
        {"a name in its directory has no end: ",
         [](TestCab& cab) { cab.members[1].name = std::string(5000, 'n'); }},
        {"a name in its directory has no end: ",
         [](TestCab& cab) { cab.next = std::string(5000, 'n'); }},
    });
}

TEST_CASE("what a reader gets along with is not refused") {
    CheckRows({
        {kGood, [](TestCab& cab) { cab.version = std::string("\0\1", 2); }},
        {kGood, [](TestCab& cab) { cab.next = "next.cab"; }},
        {kGood,
         [](TestCab& cab) {
             cab.headerReserve = "signature";
             cab.folderReserve = "fff";
             cab.blockReserve = "bbbb";
         }},
        {kGood, [](TestCab& cab) { cab.folders[0].blocks[1].checksum = 0; }},
        {"c=ccc|b=bbbbb|a=aaaaaaaa",
         [](TestCab& cab) { std::swap(cab.members[0], cab.members[2]); }},
        {"a=|b=bbbbb|c=ccc", [](TestCab& cab) { cab.members[0] = {.name = "a", .offset = 900}; }},
        {"", [](TestCab& cab) { cab.members.clear(), cab.folders.clear(); }},
    });
    CHECK(ReadCab(Good().Bytes() + "appended: a signature, for example").Told() == kGood);
}

TEST_CASE("damage is the trouble of those members only whose data it meets") {
    constexpr const char* kDamaged = "its data is damaged";
    constexpr const char* kCut = "its data is cut short";
    constexpr const char* kTooLittle = "the cabinet does not have enough data for it";
    constexpr const char* kBefore = "it begins in another cabinet";
    constexpr const char* kOthers = "its data belongs to other members";
    constexpr const char* kMethod = "compression method 5 is not supported";
    struct DamageRow {
        const char *a, *b, *c; ///< Why the member is refused; empty: it is not.
        std::function<void(TestCab&)> change;
    };
    const std::vector<DamageRow> rows = {
        {"", kDamaged, "", [](TestCab& cab) { cab.folders[0].blocks[1].checksum = 0x12345678; }},
        {kDamaged, kDamaged, "",
         [](TestCab& cab) { cab.folders[0].blocks[0].checksum = 0x12345678; }},
        // It is not compressed; this block ends a set; it reaches into the next folder; too large.
        {"", kDamaged, "", [](TestCab& cab) { cab.folders[0].blocks[1].unpacked = 4; }},
        {"", kDamaged, "", [](TestCab& cab) { cab.folders[0].blocks[1].unpacked = 0; }},
        {"", kDamaged, "", [](TestCab& cab) { cab.folders[0].blocks[1].SetSizes(10); }},
        {"", kDamaged, "", [](TestCab& cab) { cab.folders[0].blocks[1].packed = 0xFFFF; }},
        {"", "", kCut, [](TestCab& cab) { cab.folders[1].blocks[0].SetSizes(9); }},
        {"", "", kCut, [](TestCab& cab) { cab.folders[1].dataAt = 0xFFFFFFFF; }},
        {"", kTooLittle, "", [](TestCab& cab) { cab.members[1].size = 6; }},
        {"", kTooLittle, "",
         [](TestCab& cab) { cab.members[1].offset = cab.members[1].size = 0xFFFFFFFF; }},
        {"", kTooLittle, "", [](TestCab& cab) { cab.folders[0].blockCount = 1; }},
        {"", "the cabinet has no data for it", "", [](TestCab& cab) { cab.members[1].folder = 2; }},
        {"", kBefore, "", [](TestCab& cab) { cab.members[1].folder = CabEntry::kFromPrevious; }},
        {"", kBefore, "",
         [](TestCab& cab) { cab.members[1].folder = CabEntry::kFromPreviousToNext; }},
        {"", "it continues in another cabinet", "",
         [](TestCab& cab) { cab.members[1].folder = CabEntry::kToNext; }},
        {"", "it overlaps another member", "", [](TestCab& cab) { cab.members[1].offset = 7; }},
        {kOthers, kOthers, "",
         [](TestCab& cab) {
             std::swap(cab.folders[0], cab.folders[1]);
             cab.members[0].folder = cab.members[1].folder = 1;
             cab.members[2].folder = 0;
             const std::size_t data = 8 + 8 + 8 + 5 + 8 + 3;
             cab.folders[1].dataAt = static_cast<std::uint32_t>(cab.Bytes().size() - data);
         }},
        {kMethod, kMethod, "", [](TestCab& cab) { cab.folders[0].packing = 5; }},
        {"", "", "its settings for LZX compression are impossible",
         [](TestCab& cab) { cab.folders[1].packing = 22 << 8 | 3; }},
        {"", "", "its settings for Quantum compression are impossible",
         [](TestCab& cab) { cab.folders[1].packing = 9 << 8 | 1 << 4 | 2; }},
        {"", "", "not unpacked", [](TestCab& cab) { cab.folders[1].packing = 21 << 8 | 3; }},
        {"", "", "not unpacked",
         [](TestCab& cab) { cab.folders[1].packing = 21 << 8 | 7 << 4 | 2; }},
    };
    const auto part = [](const std::string& good, const std::string& reason) {
        return reason.empty() ? good : good.substr(0, 1) + "!" + reason;
    };
    for (const DamageRow& row : rows) {
        TestCab cab = Good();
        row.change(cab);
        CHECK(ReadCab(cab.Bytes()).Told() == part("a=aaaaaaaa", row.a) + "|" +
                                                 part("b=bbbbb", row.b) + "|" +
                                                 part("c=ccc", row.c));
    }
    TestCab twins = Good();
    twins.members[1] = {.name = "b", .size = 8};
    CHECK(ReadCab(twins.Bytes()).Told() == "a=aaaaaaaa|b=aaaaaaaa|c=ccc");
}

TEST_CASE("many folders over the same bytes are not walked again and again") {
    TestCab cab;
    for (int i = 0; i < 500; ++i)
        cab.folders.push_back({.dataAt = 0, .blockCount = 0xFFFF});
    cab.folders[0].blocks.assign(2000, {"x"});
    const auto dataAt = static_cast<std::uint32_t>(cab.Bytes().size() - 2000 * 9);
    for (const std::uint32_t distance : {9U, 0U}) {
        for (std::uint32_t i = 0; i < 500; ++i)
            cab.folders[i].dataAt = dataAt + i * distance;
        CHECK(ReadCab(cab.Bytes()).blocks == 2000);
    }
}

TEST_CASE("members are cut out of packed blocks, which refer to the ones before them") {
    const std::string all = kFirst + kSecond;
    const std::string a = "a=" + all.substr(0, 10);
    const std::string b = "|b=" + all.substr(10, 100);
    const std::string c = "|c=" + all.substr(112, 2);
    TestCab cab = TestCab::Mszip();
    CHECK(ReadCab(cab.Bytes()).Told() == a + b + c);
    cab.members[1].name = "pass me over";
    CHECK(ReadCab(cab.Bytes()).Told() == a + "|pass me over!not unpacked" + c);
    cab = TestCab::Mszip();
    cab.folders[0] = {.blocks = {{kFirst}, {kSecond}}};
    cab.headerReserve = "";
    cab.blockReserve = "rr";
    CHECK(ReadCab(cab.Bytes()).Told() == a + b + c);
    // References reach into the last 32,768 bytes, whatever was before.
    const std::string far(32768, 'x');
    cab = TestCab::Mszip();
    cab.folders[0].blocks.insert(cab.folders[0].blocks.begin(),
                                 {.data = "CK" + Deflated(far), .unpacked = 32768});
    cab.members = {{.name = "all", .size = 32768 + 114}};
    CHECK(ReadCab(cab.Bytes()).Told() == "all=" + far + all);
}

TEST_CASE("data that cannot be unpacked ends the folder, and no member is passed off as whole") {
    const std::string reachesTooFar = "CK" + std::string("\x4B\x04\x62\x00\x7F\xFF\x0F", 7);
    const std::vector<TestBlock> seconds = {
        {.data = "KC" + kSecondPacked.substr(2), .unpacked = 46}, // no mark
        {.data = kSecondPacked.substr(0, 9), .unpacked = 46},     // cut short
        {.data = kSecondPacked, .unpacked = 47},
        {.data = kSecondPacked, .unpacked = 45},
        {.data = reachesTooFar, .unpacked = 46}, // before the first block
    };
    for (const TestBlock& second : seconds) {
        TestCab cab = TestCab::Mszip();
        cab.folders[0].blocks[1] = second;
        cab.members[2].offset = 110; // wholly in what is promised at the least
        CHECK(ReadCab(cab.Bytes()).Told() ==
              "a=" + kFirst.substr(0, 10) + "|b!not unpacked|c!not unpacked");
    }
}
