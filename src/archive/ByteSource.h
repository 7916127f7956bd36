#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace vesk {

/// Bytes that are stored somewhere and read by position.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    /// How many there are.
    [[nodiscard]] virtual std::uint64_t Size() const = 0;

    /// Copies bytes out. @param at position of the first one; may lie beyond the end
    /// @return how many were copied: fewer than there is room for only at the end
    /// @throws Failure when they cannot be read
    virtual std::size_t Read(std::uint64_t at, std::span<std::byte> to) = 0;
};

} // namespace vesk
