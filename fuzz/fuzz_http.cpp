#include "Input.h"
#include "base/modText.h"
#include "net/clsDownloadDecisions.h"
#include "net/modDownloadReason.h"
#include "net/modHttpText.h"

#include <algorithm>
#include <string>
#include <vector>

using namespace vesk;

namespace {

/// What a header says is what is read of it.
void CheckValues(const std::string& text) {
    const std::string value = text.substr(0, text.find('\r'));
    const auto header = [](const std::string& name, const std::string& told) {
        return "HTTP/1.1 200 OK\r\nServer: a\r\n" + name + ": " + told + "\r\nX: b\r\n\r\n";
    };
    Require(HeaderValue("Location", header("LOCATION", value)) == TrimBlanks(value));
    const auto number = static_cast<std::int64_t>(text.size() * 1'000'003);
    const std::string told = std::to_string(number) + (value.empty() ? "" : " " + value);
    Require(LeadingCount(HeaderValue("Content-Length", header("content-length", told))) == number);
    Require(StatusLineOf(header("X", value)) == "HTTP/1.1 200 OK");
}

/// Which addresses of a list are tried after an error, and what becomes of the last one's answer.
void CheckDecisions(const std::string& urls, const std::string& header) {
    std::vector<std::string> all = Split(urls, ',');
    if (all.empty())
        all.emplace_back();
    clsDownloadDecisions decisions(urls);
    std::size_t tried = 0;
    do
        Require(decisions.Url() == TrimBlanks(all.at(tried++)));
    while (decisions.OnError(404));
    Require(tried == (all.size() > 2 ? all.size() : 1) && !decisions.Counts());
    const auto result = [&](const std::string& crc) {
        return decisions.Result(crc, [] { return "FOUND"; });
    };
    Require(result("") == DownloadResult::Failed && result("FOUND") == DownloadResult::Failed);
    decisions.OnStarting(1, header);
    Require(decisions.Counts() == (header.find("HTTP/1.1 200 OK") != std::string::npos));
    if (!decisions.Counts())
        return;
    Require((result("") == DownloadResult::Done) == (decisions.Announced() == 0));
    Require(result("FOUND") == DownloadResult::Done);
    Require(result("OTHER") == DownloadResult::CrcDiffers);
    decisions.OnSilence();
    Require(result("FOUND") == DownloadResult::Failed);
    decisions.OnCancelled();
    Require(result("FOUND") == DownloadResult::Cancelled);
}

} // namespace

/// An answer's header as a download reads it, and the input as an address.
void CheckInput(const std::string& text) {
    const auto end = FindHeaderEnd(text, 0);
    Require(end.has_value() == (text.find("\r\n\r\n") != std::string::npos));
    if (end) {
        Require(text.substr(*end - 4, 4) == "\r\n\r\n");
        // However the bytes came in pieces, the end is the same.
        for (std::size_t searched = 0; searched + 4 <= *end; searched += 1 + *end / 8)
            Require(FindHeaderEnd(text, searched) == end);
    }
    const std::string header = text.substr(0, end.value_or(text.size()));
    Require(StatusLineOf(header).find("\r\n") == std::string::npos);
    for (const char* name : {"Content-Length", "Location", ""})
        Require(HeaderValue(name, header).size() <= header.size());
    constexpr std::int64_t kLargest = 1'000'000'000'000'000'000;
    const std::int64_t count = LeadingCount(HeaderValue("Content-Length", header));
    Require(count >= 0 && count <= kLargest && LeadingNumber(text) >= 0);
    RecognizeErrorPage(header);
    CheckValues(text);
    CheckDecisions(text, header);
    Require(std::ranges::all_of(PageWords(text), [](char c) { return c >= ' ' && c < 0x7F; }));
    DownloadFacts facts;
    facts.url = text;
    facts.statusLine = StatusLineOf(header);
    facts.content = text;
    Require(WhyFailed(facts).find_first_of("\r\n") == std::string::npos);
    WhyCrcDiffers(facts, "1", "2");
    Require(WhyNotExpected(facts, "a fault").ends_with(": a fault"));
    Require(ConnectsTo(text, {}).find_first_of("\r\n") == std::string::npos);
    Require(HostOfUrl(text).find('/') == std::string::npos);
    if (IsRequestable(text))
        for (const std::int32_t access : {kAccessDirect, kAccessProxy, kAccessPathThroughProxy}) {
            const std::string request = RequestText(text, access);
            Require(request.find("\r\n\r\n") == request.size() - 4);
            Require(std::ranges::count(request, '\n') ==
                    std::ranges::count(RequestText("http://h/", access), '\n'));
        }
}
