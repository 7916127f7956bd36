#include "archive/modCabUnpack.h"

#include "archive/CabBuilder.h"
#include "archive/modCabDirectory.h"
#include "archive/modCabJudge.h"

#include <doctest/doctest.h>

#include <numeric>

using namespace vesk;
using namespace vesk::test;

namespace {

/// Joins what it receives: "[name]" at a begin, the bytes, "." at an end.
struct Text : CabSink {
    std::string text;
    std::size_t passedOver = 99;

    bool Begin(std::size_t place) override {
        text += "[" + std::to_string(place) + "]";
        return place != passedOver;
    }
    void Write(std::span<const std::byte> bytes) override {
        text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    void End() override { text += "."; }
};

TestCab Good() {
    return TestCab::Mszip();
}

bool Unpack(const TestCab& cab, Text& sink) {
    MemorySource source(cab.Bytes());
    ByteWindow window(source);
    CabDirectory directory = ReadCabDirectory(window);
    JudgeCabData(window, directory, [] {});
    REQUIRE(IsUnpackedHere(directory.folders[0]));
    std::vector<std::size_t> entries(directory.entries.size());
    std::iota(entries.begin(), entries.end(), std::size_t{0});
    return UnpackCabFolder(window, directory, directory.folders[0], entries, sink);
}

} // namespace

TEST_CASE("members are cut out of blocks, which refer to the ones before them") {
    const std::string all = kFirst + kSecond;
    const std::string a = "[0]" + all.substr(0, 10) + ".";
    const std::string b = "[1]" + all.substr(10, 100) + ".";
    const std::string c = "[2]" + all.substr(112, 2) + ".";
    Text sink;
    CHECK(Unpack(Good(), sink));
    CHECK(sink.text == a + b + c);

    Text without;
    without.passedOver = 1;
    CHECK(Unpack(Good(), without));
    CHECK(without.text == a + "[1]" + c);

    TestCab stored = Good();
    stored.folders[0].packing = 0;
    stored.folders[0].blocks = {{kFirst}, {kSecond}};
    stored.blockReserve = "rr";
    stored.headerReserve = "";
    Text same;
    CHECK(Unpack(stored, same));
    CHECK(same.text == a + b + c);
}

TEST_CASE("references reach into the last 32,768 bytes, whatever was before") {
    TestCab cab = Good();
    const std::string far(32768, 'x');
    cab.folders[0].blocks.insert(
        cab.folders[0].blocks.begin(),
        {.data = "CK\x01" + U16(32768) + U16(32767) + far, .unpacked = 32768});
    cab.members = {{.name = "all", .size = 32768 + 114}};
    Text sink;
    CHECK(Unpack(cab, sink));
    CHECK(sink.text == "[0]" + far + kFirst + kSecond + ".");
}

TEST_CASE("data that cannot be unpacked ends the folder, and no member is passed off as whole") {
    const std::string before = "[0]" + kFirst.substr(0, 10) + ".[1]" + kFirst.substr(10);
    struct Row {
        const char* what;
        std::string second;
        std::uint16_t unpacked;
    };
    for (const Row& row : {Row{"no mark", "KC" + kSecondPacked.substr(2), 46},
                           Row{"cut short", kSecondPacked.substr(0, 9), 46},
                           Row{"too small for its size", kSecondPacked, 47},
                           Row{"too large for its size", kSecondPacked, 45},
                           Row{"reaches before the first block",
                               "CK" + std::string("\x4B\x04\x62\x00\x7F\xFF\x0F", 7), 46}}) {
        CAPTURE(row.what);
        TestCab cab = Good();
        cab.folders[0].blocks[1] = {.data = row.second, .checksum = 0, .unpacked = row.unpacked};
        Text sink;
        CHECK_FALSE(Unpack(cab, sink));
        CHECK(sink.text == before);
    }
}
