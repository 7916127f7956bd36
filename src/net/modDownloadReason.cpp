#include "net/modDownloadReason.h"

#include "base/Problem.h"
#include "base/modText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace vesk {

namespace {

constexpr std::size_t kLongestQuote = 60;
constexpr std::size_t kLongestServerText = 100;
constexpr std::string_view kBlanks = " \t\r\n\f";

bool IsPlain(char c) {
    return c > ' ' && c < 0x7F;
}

/// What a server sent, fit to be shown: runs of blanks and control characters as one blank, what is
/// no ASCII as "?", cut at a word's end where that is near.
std::string Shown(std::string_view sent, std::size_t longest) {
    std::string text;
    for (const char c : sent) {
        if (text.size() > longest)
            break;
        if (IsPlain(c))
            text += c == '"' ? '\'' : c;
        else if (static_cast<unsigned char>(c) >= 0x80)
            text += text.ends_with('?') ? "" : "?";
        else if (!text.empty() && text.back() != ' ')
            text += ' ';
    }
    if (text.size() > longest) {
        const std::size_t blank = text.rfind(' ');
        text.resize(blank != std::string::npos && blank > longest / 2 ? blank : longest);
        return text + "...";
    }
    return TrimBlanks(text);
}

/// "4,096".
std::string Grouped(std::int64_t count) {
    std::string digits = std::to_string(count);
    for (std::size_t at = digits.size(); at > 3;) {
        at -= 3;
        digits.insert(at, ",");
    }
    return digits;
}

std::string Address(const std::string& host, std::int32_t port) {
    return Shown(host, kLongestServerText) + " port " + std::to_string(port);
}

bool IsDirect(const DownloadFacts& facts) {
    return facts.proxy.accessType == kAccessDirect;
}

/// Who did not let itself be reached. @param withPort false where only the name matters
std::string Reached(const DownloadFacts& facts, bool withPort) {
    const std::string host = IsDirect(facts) ? HostOfUrl(facts.url) : facts.proxy.proxy;
    const std::int32_t port = IsDirect(facts) ? kHttpPort : facts.proxy.proxyPort;
    return (IsDirect(facts) ? "" : "proxy ") +
           (withPort ? Address(host, port) : Shown(host, kLongestServerText));
}

/// Who answered.
std::string Answered(const DownloadFacts& facts) {
    if (IsDirect(facts))
        return Reached(facts, true);
    return Shown(HostOfUrl(facts.url), kLongestServerText) + " through " + Reached(facts, true);
}

/// "512 of 4,096 bytes came"; empty unless bytes are missing.
std::string Missing(const DownloadFacts& facts) {
    if (facts.received >= facts.announced)
        return {};
    return Grouped(facts.received) + " of " + Grouped(facts.announced) + " bytes came";
}

/// "8,192 bytes came and 4,096 were announced"; empty unless there are too many.
std::string Surplus(const DownloadFacts& facts) {
    if (facts.received <= facts.announced)
        return {};
    return Grouped(facts.received) + " bytes came and " + Grouped(facts.announced) +
           " were announced";
}

std::string WithComma(const std::string& text) {
    return text.empty() ? "" : ", " + text;
}

/// The page that came in the file's place, as a clause; empty when none did.
std::string PageInstead(const DownloadFacts& facts) {
    const std::string words = PageWords(facts.content);
    if (words.empty())
        return {};
    const std::size_t first = facts.content.find_first_not_of(kBlanks);
    const bool isPage = first != std::string::npos && facts.content[first] == '<';
    return std::string(isPage ? "a page" : "a text") + " came instead: \"" + words + "\"";
}

bool IsUnknownHost(std::int32_t number) {
    constexpr std::array kLookupErrors{11001, 11002, 11003, 11004};
    return std::ranges::find(kLookupErrors, number) != kLookupErrors.end();
}

/// Why no server has this name, as far as the address itself tells.
std::string UnknownHost(const DownloadFacts& facts) {
    std::string place = Reached(facts, false) + ": " + AsReason(facts.errorText);
    if (!IsDirect(facts))
        return place;
    const std::string host = HostOfUrl(facts.url);
    if (host.empty())
        return Quoted(Shown(facts.url, kLongestServerText)) + ": the address names no host";
    if (facts.url.find("://") != std::string::npos && !facts.url.starts_with("http://"))
        return "\"" + Shown(facts.url, kLongestServerText) +
               "\": only addresses that begin with http:// can be downloaded";
    return place + (host.find(':') == std::string::npos ? "" : ", the address must have no port");
}

std::string WhyError(const DownloadFacts& facts) {
    const std::string why = AsReason(facts.errorText);
    if (!IsRequestable(facts.url))
        return Quoted(Shown(facts.url, kLongestServerText)) + ": " + why;
    if (facts.failedHere)
        return why + WithComma(Missing(facts));
    if (IsUnknownHost(facts.errorNumber))
        return UnknownHost(facts);
    if (facts.statusLine.empty())
        return Reached(facts, true) + ": " + why;
    const std::string status = Shown(facts.statusLine, kLongestServerText);
    const bool told = status.find(" " + std::to_string(facts.errorNumber)) != std::string::npos;
    if (told)
        return Answered(facts) + ": " + status;
    // After a counting answer the connection failed; otherwise the header's words were judged.
    return Answered(facts) + ": " + (facts.counted ? why : status + ", " + why) +
           WithComma(Missing(facts));
}

/// Why an answer that came whole does not count.
std::string WhyNotCounted(const DownloadFacts& facts) {
    const std::string page = WithComma(PageInstead(facts));
    if (facts.statusLine.empty())
        return facts.received == 0 ? "the connection was closed without an answer"
                                   : "the answer has no HTTP header" + page;
    const std::string status = Shown(facts.statusLine, kLongestServerText);
    if (!facts.statusLine.starts_with("HTTP/1.1 200 OK")) {
        const bool isOk = facts.statusLine.find(" 200") != std::string::npos;
        return status + (isOk ? ", only HTTP/1.1 200 OK counts" : "") + page;
    }
    return status + ", no Content-Length above 0" + page;
}

} // namespace

std::string ConnectsTo(const std::string& url, const ProxySettings& proxy) {
    DownloadFacts facts;
    facts.url = url;
    facts.proxy = proxy;
    return Reached(facts, false);
}

std::string WhyFailed(const DownloadFacts& facts) {
    if (facts.secondsOfSilence > 0)
        return (facts.statusLine.empty() ? Reached(facts, true) : Answered(facts)) +
               ": no data for " + std::to_string(facts.secondsOfSilence) + " s" +
               WithComma(Missing(facts));
    if (facts.errorNumber != 0)
        return WhyError(facts);
    return Answered(facts) + ": " +
           (facts.counted ? Missing(facts) + Surplus(facts) : WhyNotCounted(facts));
}

std::string WhyCrcDiffers(const DownloadFacts& facts, const std::string& expected,
                          const std::string& found) {
    if (facts.received < facts.announced)
        return WhyFailed(facts);
    return Answered(facts) + ": CRC differs, expected " + Shown(expected, kLongestQuote) +
           ", found " + (found.empty() ? "none" : found) + WithComma(Surplus(facts)) +
           WithComma(PageInstead(facts));
}

std::string WhyNotExpected(const DownloadFacts& facts, const std::string& fault) {
    return Answered(facts) + ": " + fault;
}

namespace {

bool IsTextByte(char c) {
    return static_cast<unsigned char>(c) >= ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f';
}

/// The page without what stands between "<" and ">", and without the content of scripts and styles.
std::string WithoutTags(std::string_view page) {
    struct Hidden {
        std::string_view start, end;
    };
    constexpr std::array kHidden{Hidden{"<!--", "-->"}, Hidden{"<script", "</script"},
                                 Hidden{"<style", "</style"}, Hidden{"<", ">"}};
    std::string text;
    while (!page.empty()) {
        const std::size_t tag = std::min(page.find('<'), page.size());
        text.append(page.substr(0, tag));
        page.remove_prefix(tag);
        if (page.empty())
            break;
        text += ' ';
        const auto* const hidden = std::ranges::find_if(
            kHidden, [&](const Hidden& one) { return StartsWithNoCase(page, one.start); });
        const std::size_t end = FindNoCase(page, hidden->end);
        // The end of a script is a tag itself, which the next round takes.
        const std::size_t length = hidden->end.ends_with('>') ? hidden->end.size() : 0;
        page.remove_prefix(end == std::string_view::npos ? page.size() : end + length);
    }
    return text;
}

std::string WithoutEntities(std::string text) {
    constexpr std::array<std::pair<const char*, const char*>, 5> kEntities{
        {{"&nbsp;", " "}, {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}}};
    for (const auto& [entity, meaning] : kEntities)
        text = ReplaceAll(text, entity, meaning);
    return text;
}

} // namespace

std::string PageWords(std::string_view content) {
    content = content.substr(0, kContentLooked);
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (content.starts_with(kByteOrderMark))
        content.remove_prefix(kByteOrderMark.size());
    if (!std::ranges::all_of(content, IsTextByte))
        return {};
    const std::size_t first = content.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    if (content[first] != '<')
        return Shown(content, kLongestQuote);
    return Shown(WithoutEntities(WithoutTags(content)), kLongestQuote);
}

} // namespace vesk
