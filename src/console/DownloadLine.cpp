#include "console/DownloadLine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace vesk {

namespace {

/// "999 B", "1.2 kB", "34.5 MB".
std::string Amount(double bytes) {
    constexpr std::array kUnits{"kB", "MB", "GB"};
    constexpr double kThousand = 1000;
    if (bytes < kThousand)
        return std::to_string(std::lround(bytes)) + " B";
    std::size_t unit = 0;
    double amount = bytes / kThousand;
    // What would be shown as 1000.0 belongs to the next unit already.
    while (amount >= 999.95 && unit + 1 < kUnits.size()) {
        amount /= kThousand;
        ++unit;
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f %s", amount, kUnits.at(unit));
    return text.data();
}

std::string Bar(double share) {
    constexpr int kWidth = 20;
    const int full = std::clamp(static_cast<int>(share * kWidth), 0, kWidth);
    std::array<char, 16> percent{};
    std::snprintf(percent.data(), percent.size(), "%3d%%",
                  static_cast<int>(std::clamp(share, 0.0, 9.99) * 100));
    std::string bar = "[";
    bar.append(static_cast<std::size_t>(full), '#');
    bar.append(static_cast<std::size_t>(kWidth - full), '-');
    return bar.append("] ").append(percent.data());
}

/// "0:05", "1:02:03".
std::string TimeText(std::int64_t seconds) {
    std::array<char, 48> text{};
    const auto hours = static_cast<long>(seconds / 3600);
    const int minutes = static_cast<int>(seconds / 60 % 60);
    const int rest = static_cast<int>(seconds % 60);
    if (hours > 0)
        std::snprintf(text.data(), text.size(), "%ld:%02d:%02d", hours, minutes, rest);
    else
        std::snprintf(text.data(), text.size(), "%d:%02d", minutes, rest);
    return text.data();
}

} // namespace

std::string DownloadLine(const DownloadProgress& progress, const std::string& fileName) {
    std::string line;
    if (progress.fileSize > 0)
        line = Bar(progress.received / progress.fileSize) + "  ";
    line += Amount(progress.received);
    if (progress.fileSize > 0)
        line += " of " + Amount(progress.fileSize);
    if (progress.bytesPerSecond > 0)
        line += "  " + Amount(progress.bytesPerSecond) + "/s";
    if (progress.secondsLeft >= 0)
        line += "  " + TimeText(progress.secondsLeft) + " left";
    return line + "  " + fileName;
}

} // namespace vesk
