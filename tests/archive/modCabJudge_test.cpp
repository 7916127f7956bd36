#include "archive/modCabJudge.h"

#include "ExpectedText.h"
#include "archive/ArchiveContents.h"
#include "archive/ArchiveText.h"

using namespace vesk;
using namespace vesk::test;

namespace {

const std::string kFirst = "the first block, the first block, the first block, the first block, ";
const std::string kSecond = "and the first block, the first block, the last";

/// The two texts in MSZIP; the second refers to the first.
const std::string kFirstPacked("CK\x2B\xC9\x48\x55\x48\xCB\x2C\x2A\x2E\x51\x48\xCA\xC9"
                               "\x4F\xCE\xD6\x51\x28\x21\x5D\x00\x00",
                               24);
const std::string kSecondPacked("CK\x4B\xCC\x4B\x21\x52\x5B\x4E\x62\x71\x09\x00", 13);

/// Three members over two packed blocks; the second one lies across both.
TestCab Mszip() {
    TestCab cab =
        CabOf("a=|b=|c= member0.size=10 member1.size=100 member1.offset=10 member2.size=2 "
              "member2.offset=112 folder0.packing=1 block0.0.unpacked=68 block0.1.unpacked=46");
    cab.folders = {{kFirstPacked, kSecondPacked}};
    return cab;
}

} // namespace

TEST_CASE("fields of a cabinet that are not as they should be, and what is read nevertheless") {
    CheckLines("cabinets",
               [](const std::string& line) { return ReadCab(CabOf(line).Bytes()).Told(); });
    for (const char* text : {"", "this is no cabinet, only a text of some length"})
        CHECK(ReadCab(text).Told() == "it is not a cabinet: ");
    TestCab cab = CabOf("a=1|b=2");
    CHECK(ReadCab(cab.Bytes() + "appended: a signature, for example").Told() == "a=1|b=2");
    cab.members[1] = std::string(5000, 'n');
    CHECK(ReadCab(cab.Bytes()).Told() == "a name in its directory has no end: ");
}

TEST_CASE("many folders over the same bytes are not walked again and again") {
    TestCab cab;
    cab.folders.resize(500);
    cab.folders[0].assign(2000, "x");
    const std::size_t dataAt = cab.Bytes().size() - std::size_t{2000} * 9;
    for (const std::size_t distance : {9U, 0U}) {
        for (std::size_t i = 0; i < 500; ++i) {
            cab.fields["folder" + std::to_string(i) + ".at"] = dataAt + i * distance;
            cab.fields["folder" + std::to_string(i) + ".blocks"] = 0xFFFF;
        }
        CHECK(ReadCab(cab.Bytes()).blocks == 2000);
    }
}

TEST_CASE("members are cut out of packed blocks, which refer to the ones before them") {
    const std::string all = kFirst + kSecond;
    const std::string a = "a=" + all.substr(0, 10);
    const std::string b = "|b=" + all.substr(10, 100);
    const std::string c = "|c=" + all.substr(112, 2);
    TestCab cab = Mszip();
    CHECK(ReadCab(cab.Bytes()).Told() == a + b + c);
    cab.members[1] = "pass me over";
    CHECK(ReadCab(cab.Bytes()).Told() == a + "|pass me over!not unpacked" + c);
    cab = Mszip();
    cab.folders[0] = {kFirst, kSecond};
    cab.fields["folder0.packing"] = 0;
    cab.fields["reserve.block"] = 2;
    CHECK(ReadCab(cab.Bytes()).Told() == a + b + c);
    // References reach into the last 32,768 bytes, whatever was before.
    const std::string far(32768, 'x');
    cab = CabOf("all= member0.size=32882 folder0.packing=1 block0.0.unpacked=32768 "
                "block0.1.unpacked=68 block0.2.unpacked=46");
    cab.folders = {{"CK" + Deflated(far), kFirstPacked, kSecondPacked}};
    CHECK(ReadCab(cab.Bytes()).Told() == "all=" + far + all);
}

TEST_CASE("data that cannot be unpacked ends the folder, and no member is passed off as whole") {
    const std::string reachesTooFar = "CK" + std::string("\x4B\x04\x62\x00\x7F\xFF\x0F", 7);
    const std::pair<std::string, std::uint64_t> secondBlocks[] = {
        {"KC" + kSecondPacked.substr(2), 46}, // no mark
        {kSecondPacked.substr(0, 9), 46},     // cut short
        {kSecondPacked, 47},
        {kSecondPacked, 45},
        {reachesTooFar, 46}, // before the first block
    };
    for (const auto& [packed, size] : secondBlocks) {
        TestCab cab = Mszip();
        cab.folders[0][1] = packed;
        cab.fields["block0.1.unpacked"] = size;
        cab.fields["member2.offset"] = 110; // wholly in what is promised at the least
        CHECK(ReadCab(cab.Bytes()).Told() ==
              "a=" + kFirst.substr(0, 10) + "|b!not unpacked|c!not unpacked");
    }
}
