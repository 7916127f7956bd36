#pragma once

#include "net/DownloadProgress.h"

#include <string>

namespace vesk {

/// One line on a running download for the console: bar, percentage, received of total, rate, time
/// left, or what it waits for. The file's name and why an address before this one failed come last,
/// where a narrow terminal cuts.
std::string DownloadLine(const DownloadProgress& progress, const std::string& fileName);

} // namespace vesk
