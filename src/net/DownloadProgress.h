#pragma once

#include <cstdint>
#include <string>

namespace vesk {

/// How far the download from one address is.
enum class DownloadStage {
    Connecting, ///< Looking up the server's name, or connecting to it.
    Waiting,    ///< The file is asked for and the answer's header is not complete.
    Receiving,
};

/// What there is to show of a running download.
struct DownloadProgress {
    double received = 0;           ///< Bytes, of all addresses tried.
    std::int32_t fileSize = 0;     ///< Bytes announced; 0 when unknown.
    double bytesPerSecond = 0;     ///< 0 while it is unknown.
    std::int64_t secondsLeft = -1; ///< -1 while it is unknown.
    DownloadStage stage = DownloadStage::Receiving;
    std::string server; ///< Who is asked, for people.
    std::uint32_t silence =
        0;                   ///< Seconds since the file's last byte, or since the address's start.
    std::string lastFailure; ///< Why the address before this one was given up; empty for none.
};

} // namespace vesk
