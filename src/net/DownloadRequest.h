#pragma once

#include "net/DownloadResult.h"

#include <string>

namespace vesk {

/// One archive to download.
struct DownloadRequest {
    std::string urls;        ///< One address, or several separated by ",".
    std::string destination; ///< Full path of the file.
    std::string crc;         ///< Expected CRC-32 text, to match exactly; empty for any.
    std::string sha256 = {}; ///< Expected SHA-256, in lower case; empty for any.
};

/// What became of it.
struct DownloadOutcome {
    DownloadResult result = DownloadResult::Failed;

    /// Why it is not Done, for people: the server and what it said, or what the system said. Empty
    /// when it is.
    std::string reason;
};

/// Where a download is written until it is complete and right: beside its destination, so that
/// nothing has the archive's own name that is not the archive.
inline std::string PartialPath(const std::string& destination) {
    return destination + ".vesk-part";
}

} // namespace vesk
