#pragma once

#include "archive/clsCRC.h"
#include "net/DownloadProgress.h"
#include "net/DownloadRequest.h"
#include "net/clsDownload.h"
#include "net/clsDownloadDecisions.h"
#include "net/clsTransferRate.h"
#include "net/modDownloadReason.h"
#include "net/modHttpText.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

/// Whoever shows a download.
class DownloadSessionEvents {
public:
    virtual ~DownloadSessionEvents() = default;

    /// Something changed; also called now and then while nothing comes.
    virtual void OnProgress(const DownloadProgress& progress) = 0;

    /// The download is over (not after Cancel): stop waiting and ask for the Outcome.
    virtual void OnFinished() = 0;
};

/// The download of one archive as dialog and console run it: it tries further addresses on certain
/// errors, judges the answer, checks the finished file and only then gives it its name. The owner
/// keeps the thread's messages running until OnFinished or its own Cancel, and then asks for the
/// result.
class clsDownloadSession : private DownloadEvents {
public:
    /// @param owner must outlive the session
    clsDownloadSession(DownloadSessionEvents& owner, DownloadRequest request,
                       const ProxySettings& proxy = {});

    /// Gives an address up after so many seconds without a byte of the file; 0: never, as at first.
    void SetTimeout(std::uint32_t seconds) { timeout_ = seconds; }

    /// Starts with the first address. OnFinished may come before it returns.
    void Start();

    /// To be called a few times a second: reports progress also when nothing comes, and gives up
    /// what is silent for too long.
    void OnTime();

    /// Ends the download; the user has confirmed it. No event follows.
    void Cancel();

    /// True once nothing more is going to happen.
    [[nodiscard]] bool Finished() const { return finished_; }

    /// Why it failed, as far as that is known before the file is checked; empty when it looks well.
    [[nodiscard]] std::string FailureSoFar() const;

    /// What became of it, to be asked once: reads the whole file where a SHA-256 decides, so let
    /// pending events run first, and moves a good one to its destination, over what stands there.
    /// Any other stays at PartialPath, and the destination as it was. Cancelled whatever else
    /// happened, once Cancel was called. @param meanwhile called every few megabytes of the file,
    /// and while the file at its place is waited for
    [[nodiscard]] DownloadOutcome Outcome(const std::function<void()>& meanwhile = {});

private:
    void OnStarting(std::int32_t fileSize, const std::string& header) override;
    void OnDataArrival(std::int32_t bytesTotal) override;
    void OnWritten(std::string_view bytes) override;
    void OnError(std::int32_t number, const std::string& description) override;
    void OnCompleted() override;

    void StartAddress();
    void EndAddress(bool another);
    void Finish();
    void Report();
    [[nodiscard]] std::uint32_t Silence() const;
    [[nodiscard]] std::string AllReasons(const std::string& last) const;
    void LearnFacts();

    DownloadSessionEvents& owner_;
    DownloadRequest request_;
    std::string partial_; ///< Where the file is written.
    ProxySettings proxy_;
    clsDownloadDecisions decisions_;
    DownloadFacts facts_;               ///< Of the present address.
    std::vector<std::string> failures_; ///< Why each address before it was given up.
    double received_ = 0;
    clsTransferRate rate_;
    clsCRC checksum_; ///< CRC-32 of what was written of the present address's file.
    std::uint32_t timeout_ = 0;
    std::uint32_t lastByteAt_ = 0; ///< Milliseconds of the system's clock.
    bool cancelled_ = false;
    bool finished_ = false;
    clsDownload objDownload_;
};

} // namespace vesk
