#include "archive/clsCRC.h"

#include <doctest/doctest.h>

#include <cstdio>
#include <fstream>

using vesk::clsCRC;

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
        crc.SetValue(0x12345678);
        CHECK(crc.Value() == (crc32 ? ~0x12345678 : 0x5678));
    }
}

TEST_CASE("a file's checksum is upper-case hexadecimal without leading zeros") {
    struct Row {
        std::string content;
        const char* digits;
        bool crc32 = true;
    };
    clsCRC crc;
    for (const Row& row : {Row{"123456789", "CBF43926"}, Row{"\xFF\xFF\xFF\xFF", "FFFFFFFF"},
                           Row{"33", "A6216D9"}, Row{"", ""}, Row{"123456789", "31C3", false},
                           Row{std::string(600'001, 'x'), "7BEAFD55"}}) { // more than one read
        const char* const path = "clsCRC_test.tmp";
        std::ofstream(path, std::ios::binary) << row.content;
        crc.SetAlgorithm(row.crc32);
        const std::int32_t before = crc.CalculateString("before");
        CHECK(crc.CalculateFile(path) == row.digits);
        CHECK((crc.Value() == before) == row.content.empty());
        std::remove(path);
    }
    for (const char* nothing : {"no such file", "."})
        CHECK(crc.CalculateFile(nothing).empty());
}
