#include "Input.h"
#include "net/modDownloadReason.h"
#include "net/modHttpText.h"

#include <algorithm>

using namespace vesk;

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
    Require(std::ranges::all_of(PageWords(text), [](char c) { return c >= ' ' && c < 0x7F; }));
    DownloadFacts facts;
    facts.url = text;
    facts.statusLine = StatusLineOf(header);
    facts.content = text;
    Require(WhyFailed(facts).find_first_of("\r\n") == std::string::npos);
    WhyCrcDiffers(facts, "1", "2");
    Require(HostOfUrl(text).find('/') == std::string::npos);
    if (IsRequestable(text))
        for (const std::int32_t access : {kAccessDirect, kAccessProxy, kAccessPathThroughProxy}) {
            const std::string request = RequestText(text, access);
            Require(request.find("\r\n\r\n") == request.size() - 4);
            Require(std::ranges::count(request, '\n') ==
                    std::ranges::count(RequestText("http://h/", access), '\n'));
        }
}
