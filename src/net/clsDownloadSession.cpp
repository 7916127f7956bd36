#include "net/clsDownloadSession.h"

#include "base/Failure.h"
#include "base/Problem.h"
#include "base/UniqueHandle.h"
#include "base/clsPatience.h"
#include "base/modFile.h"
#include "base/modSha256.h"
#include "base/modSystemError.h"
#include "base/modTrace.h"
#include "net/DownloadResult.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace vesk {

namespace {

constexpr std::uint32_t kSecond = 1000;

/// How a file begins; empty when it cannot be read.
std::string BeginningOf(const std::string& path) {
    const FileHandle file(CreateFileA(path.c_str(), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                      nullptr));
    std::string bytes(kContentLooked, '\0');
    DWORD count = 0;
    if (!file ||
        ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) == 0)
        return {};
    bytes.resize(count);
    return bytes;
}

/// Gives a complete file its name, over a file that has it, a read-only one too. @throws Failure;
/// both files are then as before
void MoveOver(const std::string& from, const std::string& to) {
    const auto move = [&] {
        return MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
    };
    const PathState old = StateOf(to);
    const DWORD attributes = GetFileAttributesA(to.c_str());
    if (old == PathState::File)
        MakeWritable(to);
    if (old == PathState::Folder ? move() : TryPatiently(move))
        return;
    const DWORD error = GetLastError();
    if (old == PathState::File)
        SetFileAttributesA(to.c_str(), attributes);
    ThrowSystemError(error, "cannot replace", to);
}

} // namespace

clsDownloadSession::clsDownloadSession(DownloadSessionEvents& owner, DownloadRequest request,
                                       const ProxySettings& proxy)
    : owner_(owner),
      request_(std::move(request)),
      partial_(PartialPath(request_.destination)),
      proxy_(proxy),
      decisions_(request_.urls),
      objDownload_(*this) {
    objDownload_.SetAccessType(proxy.accessType);
    objDownload_.SetProxy(proxy.proxy);
    objDownload_.SetProxyPort(proxy.proxyPort);
    // What a killed run left under this name in other letter case would be appended to.
    objDownload_.SetReplacesAnyCase(true);
}

void clsDownloadSession::Start() {
    rate_.Add(0, GetTickCount());
    StartAddress();
}

void clsDownloadSession::StartAddress() {
    facts_ = {};
    checksum_.Clear();
    lastByteAt_ = GetTickCount();
    objDownload_.Download(decisions_.Url(), partial_);
}

void clsDownloadSession::OnTime() {
    if (finished_)
        return;
    rate_.Add(received_, GetTickCount());
    Report();
    if (finished_ || timeout_ == 0 || Silence() < timeout_)
        return;
    LearnFacts();
    facts_.secondsOfSilence = timeout_;
    objDownload_.Cancel();
    EndAddress(decisions_.OnSilence());
}

void clsDownloadSession::Cancel() {
    objDownload_.Cancel();
    decisions_.OnCancelled();
    cancelled_ = true;
    finished_ = true;
}

std::uint32_t clsDownloadSession::Silence() const {
    return (GetTickCount() - lastByteAt_) / kSecond;
}

void clsDownloadSession::OnStarting(std::int32_t fileSize, const std::string& header) {
    decisions_.OnStarting(fileSize, header);
}

void clsDownloadSession::OnWritten(std::string_view bytes) {
    if (!request_.crc.empty())
        checksum_.AddString(bytes);
}

void clsDownloadSession::OnDataArrival(std::int32_t bytesTotal) {
    decisions_.OnDataArrival(bytesTotal);
    const std::uint32_t now = GetTickCount();
    if (bytesTotal > 0)
        lastByteAt_ = now;
    received_ += bytesTotal;
    rate_.Add(received_, now);
    if (!decisions_.IsEndless())
        return Report();
    LearnFacts();
    Finish();
}

void clsDownloadSession::Report() {
    DownloadProgress progress;
    progress.received = received_;
    progress.fileSize = objDownload_.FileSize();
    progress.bytesPerSecond = rate_.BytesPerSecond();
    progress.secondsLeft = rate_.SecondsLeft(progress.fileSize).value_or(-1);
    progress.stage = objDownload_.Stage();
    progress.server = ConnectsTo(objDownload_.URL(), proxy_);
    progress.silence = Silence();
    if (!failures_.empty())
        progress.lastFailure = failures_.back();
    owner_.OnProgress(progress);
}

void clsDownloadSession::OnError(std::int32_t number, const std::string& description) {
    Trace("download failed with " + std::to_string(number) + ": " + description);
    LearnFacts();
    facts_.errorNumber = number;
    facts_.errorText = description;
    facts_.failedHere = objDownload_.FailedHere();
    EndAddress(decisions_.OnError(number));
}

void clsDownloadSession::OnCompleted() {
    LearnFacts();
    Finish();
}

/// Notes what is known of the present address before it is forgotten.
void clsDownloadSession::LearnFacts() {
    facts_.url = objDownload_.URL();
    facts_.proxy = proxy_;
    facts_.statusLine = objDownload_.StatusLine();
    facts_.counted = decisions_.Counts();
    facts_.announced = decisions_.Announced();
    facts_.received = decisions_.Received();
}

/// @param another whether there is a further address to try
void clsDownloadSession::EndAddress(bool another) {
    if (!another)
        return Finish();
    failures_.push_back(WhyFailed(facts_));
    StartAddress();
}

void clsDownloadSession::Finish() {
    objDownload_.Cancel();
    finished_ = true;
    owner_.OnFinished();
}

std::string clsDownloadSession::AllReasons(const std::string& last) const {
    constexpr std::size_t kMostTold = 3;
    std::string reasons;
    const std::size_t told = std::min(failures_.size(), kMostTold);
    for (std::size_t i = failures_.size() - told; i < failures_.size(); ++i)
        reasons += failures_[i] + "; ";
    return reasons + last;
}

std::string clsDownloadSession::FailureSoFar() const {
    const bool fine = facts_.counted && facts_.errorNumber == 0 && facts_.secondsOfSilence == 0 &&
                      !decisions_.IsShort();
    return !finished_ || fine || cancelled_ ? "" : AllReasons(WhyFailed(facts_));
}

DownloadOutcome clsDownloadSession::Outcome(const std::function<void()>& meanwhile) {
    std::string found;
    const DownloadResult result = decisions_.Result(request_.crc, [&] {
        // Nothing has no checksum, as with a file.
        return found = decisions_.Received() > 0 ? checksum_.Text() : std::string();
    });
    if (result == DownloadResult::Cancelled)
        return {result, "cancelled by the user"};
    if (result == DownloadResult::Done && facts_.failedHere) // it may not have reached the disk
        return {DownloadResult::Failed, AllReasons(WhyFailed(facts_))};
    if (result == DownloadResult::Done) {
        if (const std::string fault = Sha256Fault(partial_, request_.sha256, meanwhile);
            !fault.empty())
            return {DownloadResult::CrcDiffers, AllReasons(WhyNotExpected(facts_, fault))};
        try {
            const clsPatience::Meanwhile alive(clsPatience::OfProgram(), meanwhile);
            MoveOver(partial_, request_.destination);
            return {result, ""};
        } catch (const Failure& failure) {
            return {DownloadResult::Failed, AsReason(failure.what())};
        }
    }
    facts_.content = BeginningOf(partial_);
    return {result, AllReasons(result == DownloadResult::CrcDiffers
                                   ? WhyCrcDiffers(facts_, request_.crc, found)
                                   : WhyFailed(facts_))};
}

} // namespace vesk
