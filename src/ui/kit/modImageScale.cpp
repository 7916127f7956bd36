#include "ui/kit/modImageScale.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vesk {

namespace {

/// The source pixels that one target pixel covers in one direction, each with its share.
struct Slice {
    std::size_t first = 0;
    std::vector<double> shares;
};

std::vector<Slice> SlicesOf(std::size_t sourceLength, std::size_t targetLength, double start,
                            double step) {
    std::vector<Slice> slices(targetLength);
    for (std::size_t i = 0; i < targetLength; ++i) {
        const auto limit = static_cast<double>(sourceLength);
        const double begin = std::clamp(start + static_cast<double>(i) * step, 0.0, limit - 1e-6);
        const double end = std::clamp(begin + step, begin + 1e-6, limit);
        slices[i].first = static_cast<std::size_t>(begin);
        for (auto at = slices[i].first; static_cast<double>(at) < end; ++at) {
            const double from = std::max(begin, static_cast<double>(at));
            const double to = std::min(end, static_cast<double>(at) + 1.0);
            slices[i].shares.push_back((to - from) / (end - begin));
        }
    }
    return slices;
}

constexpr std::array<unsigned, 4> kChannelShifts{0, 8, 16, 24};

} // namespace

std::vector<std::uint32_t> ScaleToCover(std::span<const std::uint32_t> pixels, ImageSize from,
                                        ImageSize to) {
    const double step = std::min(static_cast<double>(from.width) / static_cast<double>(to.width),
                                 static_cast<double>(from.height) / static_cast<double>(to.height));
    const double top = static_cast<double>(from.height) - step * static_cast<double>(to.height);
    const auto columns = SlicesOf(from.width, to.width, 0, step);
    const auto rows = SlicesOf(from.height, to.height, top, step);

    std::vector<std::uint32_t> result;
    result.reserve(to.width * to.height);
    for (const Slice& row : rows) {
        for (const Slice& column : columns) {
            std::array<double, 4> sums{};
            for (std::size_t y = 0; y < row.shares.size(); ++y) {
                for (std::size_t x = 0; x < column.shares.size(); ++x) {
                    const std::uint32_t pixel =
                        pixels[(row.first + y) * from.width + column.first + x];
                    const double share = row.shares[y] * column.shares[x];
                    for (std::size_t c = 0; c < sums.size(); ++c)
                        sums[c] += share * ((pixel >> kChannelShifts[c]) & 0xFF);
                }
            }
            std::uint32_t mean = 0;
            for (std::size_t c = 0; c < sums.size(); ++c)
                mean |= static_cast<std::uint32_t>(std::lround(sums[c])) << kChannelShifts[c];
            result.push_back(mean);
        }
    }
    return result;
}

} // namespace vesk
