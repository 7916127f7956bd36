#include "archive/clsCRC.h"

#include <doctest/doctest.h>

#include <cstdio>

using vesk::clsCRC;

namespace {

/// A file in the current folder, removed at the end.
class ScratchFile {
public:
    explicit ScratchFile(const std::string& content) {
        std::FILE* file = std::fopen(Path().c_str(), "wb");
        REQUIRE(file != nullptr);
        std::fwrite(content.data(), 1, content.size(), file);
        std::fclose(file);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() { std::remove(Path().c_str()); }
    [[nodiscard]] static std::string Path() { return "clsCRC_test.tmp"; }
};

/// Bit by bit, as the definition has it: independent of every table.
std::int32_t PlainCrc32(const std::string& text) {
    std::uint32_t value = 0xFFFFFFFF;
    for (const char c : text) {
        value ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            value = (value >> 1) ^ ((value & 1) != 0 ? 0xEDB88320 : 0);
    }
    return static_cast<std::int32_t>(~value);
}

std::string LongText(std::size_t size) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        text[i] = static_cast<char>(i * 2654435761U >> 13);
    return text;
}

} // namespace

TEST_CASE("both algorithms give their check values, in one piece or many") {
    clsCRC crc;
    CHECK(crc.CalculateString("123456789") == static_cast<std::int32_t>(0xCBF43926));
    crc.SetAlgorithm(false);
    CHECK(crc.CalculateString("123456789") == 0x31C3);
    for (const bool crc32 : {true, false}) {
        crc.SetAlgorithm(crc32);
        const std::int32_t whole = crc.CalculateString("123456789");
        crc.Clear();
        crc.AddString("1234");
        CHECK(crc.AddString("56789") == whole);
        CHECK(crc.AddString("") == whole);
        CHECK(crc.CalculateString("") == 0);
    }
}

TEST_CASE("setting the algorithm clears the running value, even to the same one") {
    clsCRC crc;
    crc.AddString("abc");
    crc.SetAlgorithm(true);
    CHECK(crc.Value() == 0);
    crc.SetAlgorithm(false);
    crc.AddString("abc");
    crc.SetAlgorithm(false);
    CHECK(crc.Value() == 0);
}

TEST_CASE("reading the value inverts for CRC-32, storing does not") {
    clsCRC crc;
    crc.SetValue(0);
    CHECK(crc.Value() == -1);
    crc.SetValue(0x12345678);
    CHECK(crc.Value() == ~0x12345678);
    crc.SetAlgorithm(false);
    crc.SetValue(0x12345678);
    CHECK(crc.Value() == 0x5678);
}

TEST_CASE("a file's checksum is upper-case hexadecimal without leading zeros") {
    clsCRC crc;
    {
        const ScratchFile file("123456789");
        CHECK(crc.CalculateFile(file.Path()) == "CBF43926");
        crc.SetAlgorithm(false);
        CHECK(crc.CalculateFile(file.Path()) == "31C3");
        crc.SetAlgorithm(true);
    }
    {
        const ScratchFile file(std::string("\xFF\xFF\xFF\xFF", 4)); // its CRC-32 is 0xFFFFFFFF
        CHECK(crc.CalculateFile(file.Path()) == "FFFFFFFF");
    }
    for (int n = 0;; ++n) { // the first text whose checksum has a leading zero digit
        const std::string text = std::to_string(n);
        const std::int32_t value = PlainCrc32(text);
        if (static_cast<std::uint32_t>(value) >> 28 != 0)
            continue;
        const ScratchFile file(text);
        const std::string digits = crc.CalculateFile(file.Path());
        CHECK(digits.size() < 8);
        CHECK(static_cast<std::int32_t>(std::stoul(digits, nullptr, 16)) == value);
        break;
    }
}

TEST_CASE(
    "a file of several pieces equals its content; none, an empty one and a folder give nothing") {
    clsCRC crc;
    const std::string content = LongText(600'001);
    const ScratchFile file(content);
    const std::string digits = crc.CalculateFile(file.Path());
    CHECK(static_cast<std::int32_t>(std::stoul(digits, nullptr, 16)) == PlainCrc32(content));
    CHECK(crc.CalculateFile("no such file").empty());
    CHECK(crc.CalculateFile(".").empty());
    const ScratchFile empty("");
    CHECK(crc.CalculateFile(empty.Path()).empty());
}
