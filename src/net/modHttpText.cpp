#include "net/modHttpText.h"

#include "base/modText.h"

#include <algorithm>
#include <array>
#include <limits>

namespace vesk {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeaderEnd = "\r\n\r\n";

std::string WithoutScheme(std::string_view url) {
    constexpr std::string_view kScheme = "http://";
    std::string rest = TrimBlanks(url);
    if (rest.starts_with(kScheme))
        rest.erase(0, kScheme.size());
    return rest;
}

} // namespace

bool IsRequestable(std::string_view url) {
    return std::ranges::none_of(url, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < ' ' || byte == 0x7F;
    });
}

std::string HostOfUrl(std::string_view url) {
    const std::string rest = WithoutScheme(url);
    return rest.substr(0, rest.find('/'));
}

std::string RequestPath(const std::string& url, std::int32_t accessType) {
    if (accessType == kAccessProxy)
        return url;
    const std::string rest = WithoutScheme(url);
    const std::size_t slash = rest.find('/');
    return slash == std::string::npos ? "/" : rest.substr(slash);
}

std::string RequestText(const std::string& url, std::int32_t accessType) {
    const std::string host = HostOfUrl(url);
    std::string request = "GET " + RequestPath(url, accessType) + " HTTP/1.0\r\n";
    request += "Accept: image/gif, image/x-xbitmap, image/jpeg, image/pjpeg, "
               "application/vnd.ms-powerpoint, application/vnd.ms-excel, application/msword, "
               "application/x-shockwave-flash, */*\r\n";
    // The referrer is the bare host, also through a proxy: servers that refuse requests from
    // elsewhere are content with it.
    request += "Referer: " + host + "\r\n";
    request += "User-Agent: Mozilla/4.0 (compatible; MSIE 5.5; Windows 98; Win 9x 4.90)\r\n";
    request += "Host: " + host + "\r\n\r\n";
    return request;
}

std::optional<std::size_t> FindHeaderEnd(std::string_view received, std::size_t searched) {
    const std::size_t overlap = kHeaderEnd.size() - 1;
    const std::size_t found =
        received.find(kHeaderEnd, searched > overlap ? searched - overlap : 0);
    if (found == std::string_view::npos)
        return std::nullopt;
    return found + kHeaderEnd.size();
}

std::string HeaderValue(std::string_view name, std::string_view header) {
    const std::size_t found = FindNoCase(header, name);
    if (found == std::string_view::npos)
        return {};
    const std::size_t start = std::min(found + name.size() + 1, header.size());
    const std::size_t end = std::min(header.find(kLineEnd, start), header.size());
    return TrimBlanks(header.substr(start, end - start));
}

std::string StatusLineOf(std::string_view header) {
    return std::string(header.substr(0, header.find(kLineEnd)));
}

std::int64_t LeadingCount(std::string_view text) {
    constexpr std::int64_t kLargest = 1'000'000'000'000'000'000;
    std::int64_t number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            break;
        number = number > kLargest / 10 ? kLargest : number * 10 + (c - '0');
    }
    return std::min(number, kLargest);
}

std::int32_t LeadingNumber(std::string_view text) {
    constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(LeadingCount(text), kLargest));
}

std::optional<HttpError> RecognizeErrorPage(std::string_view header) {
    struct Sign {
        std::string_view text;
        HttpError error;
    };
    constexpr HttpError kNotFound{404, "File not found"};
    // The blank at its end belongs to the description.
    constexpr HttpError kForbidden{403, "Forbidden "};
    constexpr std::array kSigns{
        Sign{"401 unauthorized", {401, "Unauthorized"}}, Sign{"error 404 - not found", kNotFound},
        Sign{"404 not found", kNotFound},
        Sign{"blocked", kForbidden}, // also covers "web site blocked"
    };
    const std::string lower = LowerCase(header);
    const auto* const found = std::ranges::find_if(
        kSigns, [&](const Sign& sign) { return lower.find(sign.text) != std::string::npos; });
    if (found == kSigns.end())
        return std::nullopt;
    return found->error;
}

} // namespace vesk
