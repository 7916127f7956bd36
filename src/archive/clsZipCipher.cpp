#include "archive/clsZipCipher.h"

namespace vesk {

namespace {

constexpr std::array<std::uint32_t, 256> MakeCrcTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t n = 0; n < table.size(); ++n) {
        table[n] = n;
        for (int bit = 0; bit < 8; ++bit)
            table[n] = (table[n] >> 1) ^ ((table[n] & 1) != 0 ? 0xEDB88320 : 0);
    }
    return table;
}

/// One byte fed into a CRC-32 register: the cipher mixes its keys with it.
std::uint32_t CrcStep(std::uint32_t value, std::uint32_t byte) {
    static constexpr std::array<std::uint32_t, 256> kTable = MakeCrcTable();
    return (value >> 8) ^ kTable[(value ^ byte) & 0xFF];
}

} // namespace

clsZipCipher::clsZipCipher(std::string_view password) {
    for (const char c : password)
        Update(static_cast<std::uint8_t>(c));
}

std::byte clsZipCipher::Decrypt(std::byte cipher) {
    const std::uint32_t mixed = (keys_[2] & 0xFFFF) | 2;
    const auto plain = static_cast<std::uint8_t>(std::to_integer<std::uint32_t>(cipher) ^
                                                 (mixed * (mixed ^ 1)) >> 8);
    Update(plain);
    return std::byte{plain};
}

void clsZipCipher::Update(std::uint8_t plain) {
    keys_[0] = CrcStep(keys_[0], plain);
    keys_[1] = (keys_[1] + (keys_[0] & 0xFF)) * 134775813 + 1;
    keys_[2] = CrcStep(keys_[2], keys_[1] >> 24);
}

} // namespace vesk
