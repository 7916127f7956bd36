#include "net/modDownloadText.h"

#include "base/modText.h"
#include "net/modHttpText.h"

#include <cmath>

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

std::string PercentText(double received, std::int32_t fileSize) {
    std::string text = " ";
    text += WholeNumber(std::floor(received * 100 / fileSize));
    return text += '%';
}

double BarWidth(const std::string& percentText) {
    return LeadingNumber(TrimBlanks(percentText)) * (kFullBarWidth / 100);
}

} // namespace vesk
