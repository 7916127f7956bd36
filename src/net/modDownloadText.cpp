#include "net/modDownloadText.h"

#include "base/modText.h"
#include "net/modHttpText.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>

namespace vesk {

namespace {

std::string WholeNumber(double number) {
    return std::to_string(std::llround(number));
}

/// The count divided by 1000 even where the unit says bytes or megabytes: users know the figures
/// so.
std::string Amount(double count, const DigitGrouping& group) {
    return group(WholeNumber(count / 1000)) + " " + DownloadUnit(count);
}

} // namespace

std::string DownloadUnit(double count) {
    if (count < 999)
        return "Bytes";
    return count < 999999 ? "Kb" : "Mb";
}

std::string DownloadCaption(double received, std::int32_t fileSize, const DigitGrouping& group) {
    return std::string(kDownloadCaption) + " - " + Amount(received, group) + " of " +
           Amount(fileSize, group);
}

std::string ByteAmount(double bytes) {
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

std::string WaitText(const DownloadProgress& progress) {
    std::string text;
    if (progress.stage == DownloadStage::Connecting)
        text = "connecting to " + progress.server;
    else if (progress.stage == DownloadStage::Waiting)
        text = "waiting for " + progress.server;
    if (progress.silence < kSilenceTold)
        return text;
    return text + (text.empty() ? "" : ", ") + "no data for " + std::to_string(progress.silence) +
           " s";
}

std::string PercentText(double received, std::int32_t fileSize) {
    std::string text = " ";
    text += WholeNumber(std::floor(received * 100 / fileSize));
    return text += '%';
}

double BarWidth(const std::string& percentText) {
    return LeadingNumber(TrimBlanks(percentText)) * (kFullBarWidth / 100);
}

} // namespace vesk
