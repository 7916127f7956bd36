#pragma once

#include "net/DownloadDecisions.h"
#include "net/DownloadProgress.h"
#include "net/DownloadRequest.h"
#include "net/TransferRate.h"
#include "net/clsDownload.h"

#include <functional>
#include <memory>
#include <string>

namespace vesk {

/// The way to the servers.
struct ProxySettings {
    std::int32_t accessType = 0; ///< See AccessType.
    std::string proxy;
    std::int32_t proxyPort = 0;
};

/// Whoever shows a download.
class DownloadSessionEvents {
public:
    virtual ~DownloadSessionEvents() = default;

    virtual void OnProgress(const DownloadProgress& progress) = 0;

    /// The download is over (not after Cancel): stop waiting and ask for the Outcome.
    virtual void OnFinished() = 0;
};

/// The download of one archive as dialog and console run it: it tries further addresses on certain
/// errors, judges the answer and checks the finished file. The owner keeps the thread's messages
/// running until OnFinished or its own Cancel, and then asks for the result.
class clsDownloadSession : private DownloadEvents {
public:
    /// @param owner must outlive the session
    clsDownloadSession(DownloadSessionEvents& owner, DownloadRequest request,
                       const ProxySettings& proxy = {});

    /// Starts with the first address. OnFinished may come before it returns.
    void Start();

    /// Ends the download; the user has confirmed it. No event follows.
    void Cancel();

    /// True once nothing more is going to happen.
    [[nodiscard]] bool Finished() const { return finished_; }

    /// What became of it; reads the whole file where its checksum decides, so let pending events
    /// run first. Cancelled whatever else happened, once Cancel was called.
    /// @param meanwhile called every few megabytes of the file
    [[nodiscard]] DownloadOutcome Outcome(const std::function<void()>& meanwhile = {}) const;

private:
    void OnStarting(std::int32_t fileSize, const std::string& header) override;
    void OnDataArrival(std::int32_t bytesTotal) override;
    void OnError(std::int32_t number, const std::string& description) override;
    void OnCompleted() override;

    void Finish();

    DownloadSessionEvents& owner_;
    DownloadRequest request_;
    DownloadDecisions decisions_;
    std::string error_; ///< What the last error said.
    double received_ = 0;
    TransferRate rate_;
    bool finished_ = false;
    clsDownload objDownload_;
};

} // namespace vesk
