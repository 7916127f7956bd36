#include "console/modDownloadLine.h"

#include "net/modDownloadText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace vesk {

namespace {

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
    std::vector<std::string> parts;
    if (progress.stage == DownloadStage::Receiving) {
        const bool sizeKnown = progress.fileSize > 0;
        if (sizeKnown)
            parts.push_back(Bar(progress.received / progress.fileSize));
        parts.push_back(ByteAmount(progress.received) +
                        (sizeKnown ? " of " + ByteAmount(progress.fileSize) : ""));
    }
    const std::string wait = WaitText(progress);
    if (!wait.empty()) {
        parts.push_back(wait);
    } else {
        if (progress.bytesPerSecond > 0)
            parts.push_back(ByteAmount(progress.bytesPerSecond) + "/s");
        if (progress.secondsLeft >= 0)
            parts.push_back(TimeText(progress.secondsLeft) + " left");
    }
    parts.push_back(fileName);
    if (!progress.lastFailure.empty())
        parts.push_back("(" + progress.lastFailure + ")");
    std::string line;
    for (const std::string& part : parts)
        line += (line.empty() ? "" : "  ") + part;
    return line;
}

} // namespace vesk
