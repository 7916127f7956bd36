#include "ui/kit/modContrast.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

constexpr double kReadable = 4.5;

/// Brightness as the eye sees it, 0 to 1.
double BrightnessOf(Colour colour) {
    const auto linear = [&](unsigned shift) {
        const double part = static_cast<double>(colour >> shift & 0xFF) / 255;
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(0) + 0.7152 * linear(8) + 0.0722 * linear(16);
}

} // namespace

double ContrastOf(Colour text, Colour background) {
    const double one = BrightnessOf(text);
    const double other = BrightnessOf(background);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

Colour ReadableColour(Colour wanted, Colour systemText, Colour background) {
    return ContrastOf(wanted, background) >= kReadable ? wanted : systemText;
}

bool IsDark(Colour background) {
    constexpr Colour kWhite = 0xFFFFFF;
    return ContrastOf(kWhite, background) >= kReadable;
}

} // namespace vesk
