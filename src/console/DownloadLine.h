#pragma once

#include "net/DownloadProgress.h"

#include <string>

namespace vesk {

/// One line on a running download for the console: bar, percentage, received of total, rate, time
/// left, and the file's name at the end, where a narrow terminal cuts.
std::string DownloadLine(const DownloadProgress& progress, const std::string& fileName);

} // namespace vesk
