#pragma once

#include "net/DownloadProgress.h"

#include <cstdint>
#include <functional>
#include <string>

/// What the download dialog, and in part the console's line, shows of a running download.
namespace vesk {

/// Puts the separators of the user's locale between the digits of a whole number.
using DigitGrouping = std::function<std::string(const std::string& digits)>;

/// Title of the dialog before the first data arrives.
inline constexpr const char* kDownloadCaption = "Downloading";

/// Width of the full bar in twips.
inline constexpr double kFullBarWidth = 3885;

/// "Bytes" below 999, "Kb" below 999999, "Mb" from there on. The odd limits are intended.
std::string DownloadUnit(double count);

/// Title with the bytes received and the file's size, for example "Downloading - 1,234 Mb of 5,678
/// Mb": both always in thousands, whatever their unit says.
std::string DownloadCaption(double received, std::int32_t fileSize, const DigitGrouping& group);

/// "999 B", "1.2 kB", "34.5 MB".
std::string ByteAmount(double bytes);

/// Seconds without a byte after which that is shown.
inline constexpr std::uint32_t kSilenceTold = 5;

/// What a download waits for, "connecting to host" or "no data for 30 s"; empty while bytes come.
std::string WaitText(const DownloadProgress& progress);

/// Whole percents received, with a leading space: " 45%". @param fileSize at least 1
std::string PercentText(double received, std::int32_t fileSize);

/// Width of the bar in twips for a PercentText.
double BarWidth(const std::string& percentText);

} // namespace vesk
