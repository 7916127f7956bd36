#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vesk {

/// Width and height in pixels; both are at least 1 for every picture.
struct ImageSize {
    std::size_t width = 0;
    std::size_t height = 0;

    bool operator==(const ImageSize&) const = default;
};

/// Scales a picture so that it covers the target without distortion; what sticks out is cut off on
/// the right or at the top. Each target pixel is the mean of the source area below it, which
/// keeps small pictures clean where the system's own stretching drops pixels.
/// @param pixels rows from top to bottom, four 8-bit channels a pixel, as many as `from` says
/// @return as many pixels as `to` says
std::vector<std::uint32_t> ScaleToCover(std::span<const std::uint32_t> pixels, ImageSize from,
                                        ImageSize to);

} // namespace vesk
