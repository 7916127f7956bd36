#pragma once

#include <cstdint>
#include <deque>
#include <optional>

namespace vesk {

/// Speed of a transfer over its last few seconds.
class clsTransferRate {
public:
    /// Takes in how many bytes have come in all, at a time in milliseconds of a clock that may
    /// wrap.
    void Add(double received, std::uint32_t milliseconds);

    /// Bytes a second; 0 until enough is known.
    [[nodiscard]] double BytesPerSecond() const;

    /// Seconds until `total` bytes have come; nothing while that is unknown.
    [[nodiscard]] std::optional<std::int64_t> SecondsLeft(double total) const;

private:
    struct Sample {
        double received;
        std::uint32_t milliseconds;
    };
    std::deque<Sample> samples_; ///< The newest is last and replaced until it is worth keeping.
};

} // namespace vesk
