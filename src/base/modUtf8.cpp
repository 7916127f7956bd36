#include "base/modUtf8.h"

#include <cstddef>
#include <cstdint>

namespace vesk {

namespace {

constexpr std::uint32_t kBroken = 0xFFFFFFFF;

/// Takes the first character off the text; kBroken when there is none.
std::uint32_t TakeCharacter(std::string_view& text) {
    const auto first = static_cast<std::uint8_t>(text[0]);
    if (first < 0x80) {
        text.remove_prefix(1);
        return first;
    }
    const std::size_t following = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4 || text.size() <= following)
        return kBroken;
    std::uint32_t value = first & (0x3FU >> following);
    for (std::size_t i = 1; i <= following; ++i) {
        const auto byte = static_cast<std::uint8_t>(text[i]);
        if (byte >> 6 != 2)
            return kBroken;
        value = value << 6 | (byte & 0x3FU);
    }
    constexpr std::uint32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
    if (value < kSmallest[following] || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000))
        return kBroken;
    text.remove_prefix(following + 1);
    return value;
}

} // namespace

std::optional<std::wstring> FromUtf8(std::string_view text) {
    std::wstring wide;
    wide.reserve(text.size());
    while (!text.empty()) {
        const std::uint32_t value = TakeCharacter(text);
        if (value == kBroken)
            return std::nullopt;
        if (value >= 0x10000)
            wide += static_cast<wchar_t>(0xD800 + ((value - 0x10000) >> 10));
        wide += static_cast<wchar_t>(value >= 0x10000 ? 0xDC00 + (value & 0x3FF) : value);
    }
    return wide;
}

} // namespace vesk
