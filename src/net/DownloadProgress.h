#pragma once

#include <cstdint>

namespace vesk {

/// What there is to show of a running download.
struct DownloadProgress {
    double received = 0;           ///< Bytes, of all addresses tried.
    std::int32_t fileSize = 0;     ///< Bytes announced; 0 when unknown: then nothing can be shown.
    double bytesPerSecond = 0;     ///< 0 while it cannot be told.
    std::int64_t secondsLeft = -1; ///< -1 while it cannot be told.
};

} // namespace vesk
