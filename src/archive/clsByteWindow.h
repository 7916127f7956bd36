#pragma once

#include "archive/ByteSource.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vesk {

/// Small neighbouring pieces of a source, fetched in larger ones.
class clsByteWindow {
public:
    /// What suits members' data: fewer calls of the system gain nothing any more.
    static constexpr std::size_t kLargestPiece = std::size_t{256} * 1024;

    /// @param source must outlive this object @param piece how much is fetched at a time
    explicit clsByteWindow(ByteSource& source, std::size_t piece = kLargestPiece)
        : source_(source) {
        Grow(piece);
    }

    /// How many bytes the source has.
    [[nodiscard]] std::uint64_t Size() const { return source_.Size(); }

    /// The bytes from `at` on; fewer than `count` only at the end of the source. They stay until
    /// the next call. More than a piece makes the window larger for good, so callers bound `count`.
    /// @throws Failure when they cannot be read
    std::span<const std::byte> View(std::uint64_t at, std::size_t count) {
        const auto bytes = ViewAtLeast(at, count);
        return bytes.first(std::min(count, bytes.size()));
    }

    /// The same with all that the window happens to hold behind them: for a search.
    std::span<const std::byte> ViewAtLeast(std::uint64_t at, std::size_t count) {
        const bool inside = at >= start_ && at - start_ <= filled_ &&
                            filled_ - static_cast<std::size_t>(at - start_) >= count;
        if (!inside) {
            if (count > buffer_.size())
                Grow(2 * count); // twice, so that the next request mostly lies inside as well
            filled_ = 0;
            start_ = at;
            filled_ = source_.Read(at, buffer_);
        }
        return std::span(buffer_).first(filled_).subspan(static_cast<std::size_t>(at - start_));
    }

private:
    void Grow(std::size_t size) {
        const auto useful = static_cast<std::size_t>(std::min<std::uint64_t>(size, Size()));
        if (useful > buffer_.size())
            buffer_.resize(useful);
    }

    ByteSource& source_;
    std::vector<std::byte> buffer_; // never larger than the source: a sanitizer watches its end
    std::uint64_t start_ = 0;
    std::size_t filled_ = 0;
};

} // namespace vesk
