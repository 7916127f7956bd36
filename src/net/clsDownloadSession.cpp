#include "net/clsDownloadSession.h"

#include "archive/clsCRC.h"
#include "base/Problem.h"
#include "base/Trace.h"

#include <windows.h>

#include <utility>

namespace vesk {

clsDownloadSession::clsDownloadSession(DownloadSessionEvents& owner, DownloadRequest request,
                                       const ProxySettings& proxy)
    : owner_(owner), request_(std::move(request)), decisions_(request_.urls), objDownload_(*this) {
    objDownload_.SetAccessType(proxy.accessType);
    objDownload_.SetProxy(proxy.proxy);
    objDownload_.SetProxyPort(proxy.proxyPort);
}

void clsDownloadSession::Start() {
    rate_.Add(0, GetTickCount());
    objDownload_.Download(decisions_.Url(), request_.destination);
}

void clsDownloadSession::Cancel() {
    objDownload_.Cancel();
    decisions_.OnCancelled();
    finished_ = true;
}

DownloadOutcome clsDownloadSession::Outcome(const std::function<void()>& meanwhile) const {
    DownloadOutcome outcome;
    outcome.result = decisions_.Result(request_.crc, [&] {
        clsCRC checksum;
        checksum.SetAlgorithm(true);
        return checksum.CalculateFile(request_.destination, meanwhile);
    });
    if (outcome.result != DownloadResult::Done)
        outcome.reason = error_.empty() ? "the download failed" : error_;
    return outcome;
}

void clsDownloadSession::OnStarting(std::int32_t fileSize, const std::string& header) {
    decisions_.OnStarting(fileSize, header);
}

void clsDownloadSession::OnDataArrival(std::int32_t bytesTotal) {
    received_ += bytesTotal;
    rate_.Add(received_, GetTickCount());
    DownloadProgress progress;
    progress.received = received_;
    progress.fileSize = objDownload_.FileSize();
    progress.bytesPerSecond = rate_.BytesPerSecond();
    progress.secondsLeft = rate_.SecondsLeft(progress.fileSize).value_or(-1);
    owner_.OnProgress(progress);
}

void clsDownloadSession::OnError(std::int32_t number, const std::string& description) {
    error_ = AsReason(description);
    Trace("download failed with " + std::to_string(number) + ": " + description);
    if (decisions_.OnError(number))
        objDownload_.Download(decisions_.Url(), request_.destination);
    else
        Finish();
}

void clsDownloadSession::OnCompleted() {
    Finish();
}

void clsDownloadSession::Finish() {
    objDownload_.Cancel();
    finished_ = true;
    owner_.OnFinished();
}

} // namespace vesk
