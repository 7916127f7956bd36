#pragma once

namespace vesk {

/// What became of one download; the numbers are what download and build run exchange.
enum class DownloadResult : short {
    CrcDiffers = 0, ///< The file arrived, but it is not the expected one.
    Done = 1,
    Failed = 2,
    Cancelled = 3, ///< By the user.
};

} // namespace vesk
