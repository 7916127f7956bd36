#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace vesk {

/// Cursor over little-endian fields. Running off the end is an ordinary answer: from then on every
/// read gives zeros or nothing, and Ok() is false. So a record is read whole and judged once.
class clsByteReader {
public:
    /// @param bytes outlive the reader and what it gives
    explicit clsByteReader(std::span<const std::byte> bytes) : rest_(bytes) {}

    /// False once a read ran off the end.
    [[nodiscard]] bool Ok() const { return ok_; }
    [[nodiscard]] std::size_t Left() const { return rest_.size(); }

    /// The next number of 8, 16, 32 or 64 bits.
    std::uint8_t U8() { return Number<std::uint8_t>(); }
    std::uint16_t U16() { return Number<std::uint16_t>(); }
    std::uint32_t U32() { return Number<std::uint32_t>(); }
    std::uint64_t U64() { return Number<std::uint64_t>(); }

    /// The next `count` bytes; nothing when fewer are left.
    std::span<const std::byte> Bytes(std::size_t count) {
        if (count > rest_.size()) {
            ok_ = false;
            rest_ = {};
            return {};
        }
        const auto taken = rest_.first(count);
        rest_ = rest_.subspan(count);
        return taken;
    }

    /// The next `count` bytes as text, or none of them.
    std::string Text(std::size_t count) {
        const auto bytes = Bytes(count);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }
    void Skip(std::size_t count) { Bytes(count); }

private:
    template <std::unsigned_integral T>
    T Number() {
        std::uint64_t value = 0;
        unsigned shift = 0;
        for (const std::byte byte : Bytes(sizeof(T))) {
            value |= std::to_integer<std::uint64_t>(byte) << shift;
            shift += 8;
        }
        return static_cast<T>(value);
    }

    std::span<const std::byte> rest_;
    bool ok_ = true;
};

} // namespace vesk
