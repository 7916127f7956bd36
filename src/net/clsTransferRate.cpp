#include "net/clsTransferRate.h"

#include <cmath>
#include <cstddef>

namespace vesk {

namespace {
constexpr std::uint32_t kWindow = 5000;
constexpr std::uint32_t kSampleDistance = 200;
} // namespace

void clsTransferRate::Add(double received, std::uint32_t milliseconds) {
    const std::size_t count = samples_.size();
    if (count >= 2 &&
        samples_[count - 1].milliseconds - samples_[count - 2].milliseconds < kSampleDistance)
        samples_.pop_back();
    samples_.push_back({received, milliseconds});
    while (samples_.size() > 2 && milliseconds - samples_[1].milliseconds >= kWindow)
        samples_.pop_front();
}

double clsTransferRate::BytesPerSecond() const {
    if (samples_.size() < 2)
        return 0;
    const std::uint32_t elapsed = samples_.back().milliseconds - samples_.front().milliseconds;
    if (elapsed == 0)
        return 0;
    return (samples_.back().received - samples_.front().received) * 1000 / elapsed;
}

std::optional<std::int64_t> clsTransferRate::SecondsLeft(double total) const {
    const double rate = BytesPerSecond();
    if (rate <= 0 || samples_.back().received > total)
        return std::nullopt;
    return std::llround(std::ceil((total - samples_.back().received) / rate));
}

} // namespace vesk
