#include "net/DownloadDecisions.h"

#include "base/modText.h"

#include <algorithm>
#include <array>

namespace vesk {

namespace {

/// Errors that another server may not have: no address for the name, no answer, no such file.
constexpr std::array kMirrorErrors{11004, 10060, 404};

/// Errors that are an answer of the server.
constexpr std::array kAnsweredErrors{401, 403, 404};

template <class Numbers>
bool IsOneOf(const Numbers& numbers, std::int32_t number) {
    return std::ranges::find(numbers, number) != numbers.end();
}

} // namespace

DownloadDecisions::DownloadDecisions(std::string_view urls) : urls_(Split(urls, ',')) {
    if (urls_.empty())
        urls_.emplace_back();
    for (std::string& url : urls_)
        url = TrimBlanks(url);
}

void DownloadDecisions::OnStarting(std::int32_t fileSize, std::string_view header) {
    // Only this wording counts, and only with a length: a server that answers as HTTP/1.0, or
    // without telling the size, fails although its file is written. The catalogue's servers are
    // chosen for it.
    if (header.find("HTTP/1.1 200 OK") != std::string_view::npos && fileSize >= 1)
        succeeded_ = true;
}

bool DownloadDecisions::OnError(std::int32_t number) {
    const std::size_t last = urls_.size() - 1;
    // Of exactly two addresses the second is never tried. Catalogues in use rely on it.
    const bool another = current_ < last && last > 1 && IsOneOf(kMirrorErrors, number);
    if (another)
        ++current_;
    // After any other error an answer that counted as success stands: the checksum decides.
    if (another || IsOneOf(kAnsweredErrors, number))
        succeeded_ = false;
    return another;
}

DownloadResult DownloadDecisions::Result(const std::string& expectedCrc,
                                         const std::function<std::string()>& fileCrc) const {
    if (cancelled_)
        return DownloadResult::Cancelled;
    if (!succeeded_)
        return DownloadResult::Failed;
    if (expectedCrc.empty() || fileCrc() == expectedCrc)
        return DownloadResult::Done;
    return DownloadResult::CrcDiffers;
}

} // namespace vesk
