#include "archive/clsCRC.h"

#include "base/modText.h"

#include <libdeflate.h>

#include <charconv>
#include <cstdio>
#include <memory>

namespace vesk {

namespace {

constexpr std::array<std::uint16_t, 256> MakeTable16() {
    std::array<std::uint16_t, 256> table{};
    for (std::uint32_t n = 0; n < table.size(); ++n) {
        std::uint32_t remainder = n << 8;
        for (int bit = 0; bit < 8; ++bit)
            remainder = (remainder & 0x8000) != 0 ? (remainder << 1) ^ 0x1021 : remainder << 1;
        table[n] = static_cast<std::uint16_t>(remainder);
    }
    return table;
}
constexpr std::array<std::uint16_t, 256> kTable16 = MakeTable16();
static_assert(kTable16[1] == 0x1021 && kTable16[255] == 0x1EF0);

std::uint32_t Advance16(std::uint32_t value, std::span<const std::byte> bytes) {
    for (const std::byte byte : bytes) {
        const std::uint32_t index = (std::to_integer<std::uint32_t>(byte) ^ value >> 8) & 0xFF;
        value = kTable16[index] ^ (value & 0xFF) << 8;
    }
    return value;
}

/// The library takes and gives the finished checksum; the register here is its inverse.
std::uint32_t Advance32(std::uint32_t value, std::span<const std::byte> bytes) {
    return ~libdeflate_crc32(~value, bytes.data(), bytes.size());
}

using StdioFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

std::string UpperHex(std::uint32_t value) {
    std::array<char, 8> digits{};
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16).ptr;
    return UpperCase({digits.data(), end});
}

} // namespace

void clsCRC::SetAlgorithm(bool crc32) {
    crc32_ = crc32;
    Clear();
}

void clsCRC::Clear() {
    register32_ = 0xFFFFFFFF;
    register16_ = 0;
}

std::int32_t clsCRC::AddBytes(std::span<const std::byte> bytes) {
    if (!bytes.empty()) {
        if (crc32_)
            register32_ = Advance32(register32_, bytes);
        else
            register16_ = Advance16(register16_, bytes);
    }
    return Value();
}

std::int32_t clsCRC::AddString(std::string_view text) {
    return AddBytes(std::as_bytes(std::span(text)));
}

std::int32_t clsCRC::CalculateBytes(std::span<const std::byte> bytes) {
    Clear();
    return AddBytes(bytes);
}

std::int32_t clsCRC::CalculateString(std::string_view text) {
    return CalculateBytes(std::as_bytes(std::span(text)));
}

std::string clsCRC::CalculateFile(const std::string& path, const std::function<void()>& meanwhile) {
    const StdioFile file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file)
        return {};
    // Pieces that stay in the processor's cache are both faster than one read of the whole file
    // and kinder to memory; stdio's own buffer would only copy them once more.
    constexpr std::size_t kPiece = std::size_t{256} * 1024;
    const auto piece = std::make_unique_for_overwrite<std::byte[]>(kPiece);
    std::setvbuf(file.get(), nullptr, _IONBF, 0);
    constexpr std::size_t kPiecesBetweenCalls = 16;
    std::size_t pieces = 0;
    while (const std::size_t count = std::fread(piece.get(), 1, kPiece, file.get())) {
        if (pieces == 0) // nothing is computed without any
            Clear();
        AddBytes({piece.get(), count});
        if (++pieces % kPiecesBetweenCalls == 0 && meanwhile)
            meanwhile();
    }
    if (pieces == 0 || std::ferror(file.get()) != 0)
        return {};
    return Text();
}

std::string clsCRC::Text() const {
    return UpperHex(static_cast<std::uint32_t>(Value()));
}

std::int32_t clsCRC::Value() const {
    return static_cast<std::int32_t>(crc32_ ? ~register32_ : register16_ & 0xFFFF);
}

void clsCRC::SetValue(std::int32_t value) {
    (crc32_ ? register32_ : register16_) = static_cast<std::uint32_t>(value);
}

} // namespace vesk
