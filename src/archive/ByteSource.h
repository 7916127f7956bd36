#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vesk {

/// Bytes that are stored somewhere and read by position.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    [[nodiscard]] virtual std::uint64_t Size() const = 0;

    /// Copies bytes out. @param at position of the first one; may lie beyond the end
    /// @return how many were copied: fewer than there is room for only at the end
    /// @throws Failure when they cannot be read
    virtual std::size_t Read(std::uint64_t at, std::span<std::byte> to) = 0;
};

/// Small neighbouring pieces of a source, fetched in large ones.
class ByteWindow {
public:
    /// No piece may be larger.
    static constexpr std::size_t kLargestPiece = std::size_t{256} * 1024;

    /// @param source must outlive this object
    explicit ByteWindow(ByteSource& source) : source_(source), buffer_(kLargestPiece) {}

    [[nodiscard]] std::uint64_t Size() const { return source_.Size(); }

    /// The bytes from `at` on; fewer than `count` only at the end of the source. They stay until
    /// the next call. @throws Failure when they cannot be read
    std::span<const std::byte> View(std::uint64_t at, std::size_t count) {
        const bool inside = at >= start_ && at - start_ <= filled_ &&
                            filled_ - static_cast<std::size_t>(at - start_) >= count;
        if (!inside) {
            filled_ = 0;
            start_ = at;
            filled_ = source_.Read(at, buffer_);
        }
        const auto from = static_cast<std::size_t>(at - start_);
        return std::span(buffer_).subspan(from, std::min(count, filled_ - from));
    }

private:
    ByteSource& source_;
    std::vector<std::byte> buffer_;
    std::uint64_t start_ = 0;
    std::size_t filled_ = 0;
};

} // namespace vesk
