#include "net/clsDownloadDecisions.h"

#include "base/modText.h"
#include "net/modDownloadReason.h"
#include "net/modHttpText.h"

#include <algorithm>
#include <array>

namespace vesk {

namespace {

/// Errors that another server may not have: no address for the name, no answer, no such file.
constexpr std::int32_t kNoAnswer = 10060;
constexpr std::array kMirrorErrors{11004, kNoAnswer, 404};

/// Errors that are an answer of the server.
constexpr std::array kAnsweredErrors{401, 403, 404};

template <class Numbers>
bool IsOneOf(const Numbers& numbers, std::int32_t number) {
    return std::ranges::find(numbers, number) != numbers.end();
}

} // namespace

clsDownloadDecisions::clsDownloadDecisions(std::string_view urls) : urls_(Split(urls, ',')) {
    if (urls_.empty())
        urls_.emplace_back();
    for (std::string& url : urls_)
        url = TrimBlanks(url);
}

void clsDownloadDecisions::OnStarting(std::int32_t fileSize, std::string_view header) {
    // Only this wording counts, and only with a length: a server that answers as HTTP/1.0, or
    // without telling the size, fails although its file is written. The catalogue's servers are
    // chosen for it.
    if (header.find("HTTP/1.1 200 OK") != std::string_view::npos && fileSize >= 1)
        succeeded_ = true;
    // Counted apart from `fileSize`, which has no room for a file of more than two gigabytes.
    announced_ = header.empty() ? fileSize : LeadingCount(HeaderValue("Content-Length", header));
    received_ = 0;
}

bool clsDownloadDecisions::OnError(std::int32_t number) {
    const std::size_t last = urls_.size() - 1;
    // Of exactly two addresses the second is never tried. Catalogues in use rely on it.
    const bool another = current_ < last && last > 1 && IsOneOf(kMirrorErrors, number);
    if (another)
        ++current_;
    if (another)
        announced_ = received_ = 0;
    // After any other error an answer that counted as success stands: the checksum decides.
    if (another || IsOneOf(kAnsweredErrors, number))
        succeeded_ = false;
    return another;
}

bool clsDownloadDecisions::OnSilence() {
    const bool another = OnError(kNoAnswer);
    succeeded_ = false;
    return another;
}

bool clsDownloadDecisions::IsEndless() const {
    constexpr std::int64_t kUnannounced = std::int64_t{16} * 1024 * 1024;
    return received_ > (succeeded_ ? announced_ + kUnannounced : std::int64_t{kContentLooked});
}

DownloadResult clsDownloadDecisions::Result(const std::string& expectedCrc,
                                            const std::function<std::string()>& fileCrc) const {
    if (cancelled_)
        return DownloadResult::Cancelled;
    if (!succeeded_)
        return DownloadResult::Failed;
    if (expectedCrc.empty()) // then nothing but its size tells whether the file is whole
        return IsShort() || IsEndless() ? DownloadResult::Failed : DownloadResult::Done;
    return fileCrc() == expectedCrc && !IsEndless() ? DownloadResult::Done
                                                    : DownloadResult::CrcDiffers;
}

} // namespace vesk
