#include "archive/clsCRC.h"

#include <doctest/doctest.h>

#include <cstdio>

using vesk::clsCRC;

namespace {

/// The checksum of a file with that content, which is gone afterwards.
std::string OfFile(clsCRC& crc, const std::string& content) {
    const char* const path = "clsCRC_test.tmp";
    std::FILE* const file = std::fopen(path, "wb");
    REQUIRE(file != nullptr);
    std::fwrite(content.data(), 1, content.size(), file);
    std::fclose(file);
    const std::string digits = crc.CalculateFile(path);
    std::remove(path);
    return digits;
}

} // namespace

TEST_CASE("both algorithms give their check values, in one piece or many") {
    clsCRC crc;
    for (const auto& [crc32, expected] : {std::pair{true, 0xCBF43926}, {false, 0x31C3U}}) {
        crc.SetAlgorithm(crc32);
        const auto whole = static_cast<std::int32_t>(expected);
        CHECK(crc.CalculateString("123456789") == whole);
        crc.Clear();
        crc.AddString("1234");
        CHECK(crc.AddString("56789") == whole);
        CHECK(crc.AddString("") == whole);
        crc.SetAlgorithm(crc32); // clears, even when it changes nothing
        CHECK(crc.Value() == 0);
    }
}

TEST_CASE("reading the value inverts for CRC-32, storing does not") {
    clsCRC crc;
    crc.SetValue(0x12345678);
    CHECK(crc.Value() == ~0x12345678);
    crc.SetAlgorithm(false);
    crc.SetValue(0x12345678);
    CHECK(crc.Value() == 0x5678);
}

TEST_CASE("a file's checksum is upper-case hexadecimal without leading zeros") {
    clsCRC crc;
    CHECK(OfFile(crc, "123456789") == "CBF43926");
    CHECK(OfFile(crc, "\xFF\xFF\xFF\xFF") == "FFFFFFFF");
    CHECK(OfFile(crc, "33") == "A6216D9");
    CHECK(OfFile(crc, std::string(600'001, 'x')) == "7BEAFD55"); // more than one read takes
    for (const char* nothing : {"no such file", "."})
        CHECK(crc.CalculateFile(nothing).empty());
    CHECK(OfFile(crc, "").empty());
    crc.SetAlgorithm(false);
    CHECK(OfFile(crc, "123456789") == "31C3");
}
