#pragma once

#include "console/clsTerminal.h"
#include "net/clsDownloadSession.h"

#include <cstdint>
#include <string>

namespace vesk {

/// One download with its progress drawn on the terminal. Ctrl+C cancels it.
class clsConsoleDownload : private DownloadSessionEvents {
public:
    /// @param terminal outlives the object
    explicit clsConsoleDownload(clsTerminal& terminal) : terminal_(terminal) {}

    /// Returns when the download is over. Arguments as for clsDownloadSession.
    /// @param timeout seconds without a byte after which an address is given up; 0: never
    DownloadOutcome Run(const DownloadRequest& request, const ProxySettings& proxy, int timeout);

private:
    void OnProgress(const DownloadProgress& progress) override;
    void OnFinished() override {}

    clsTerminal& terminal_;
    std::string fileName_;
    std::uint32_t drawnAt_ = 0;
};

} // namespace vesk
