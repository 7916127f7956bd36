#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The texts of an HTTP/1.0 download: what is asked for and what an answer's header says.
namespace vesk {

/// How a download reaches its server. Any value is allowed; those not named behave like
/// PathThroughProxy.
enum AccessType : std::int32_t {
    kAccessDirect = 0,           ///< To the URL's host at port 80.
    kAccessProxy = 1,            ///< To the proxy, which is given the whole URL.
    kAccessPathThroughProxy = 2, ///< To the proxy, which is given only the path.
};

/// The way to the servers.
struct ProxySettings {
    std::int32_t accessType = kAccessDirect; ///< See AccessType.
    std::string proxy;
    std::int32_t proxyPort = 0;
};

/// The port of every direct connection.
inline constexpr std::int32_t kHttpPort = 80;

/// False for a URL that must not become a part of a request: a line end or other control character
/// in it would end its line or begin a new one. What becomes of a blank is the server's matter.
bool IsRequestable(std::string_view url);

/// Host of a URL: without a leading "http://" (lower case only) and without what follows the first
/// "/". A port written behind it stays part of the host.
std::string HostOfUrl(std::string_view url);

/// What the request line asks for: the whole URL with access type 1, else its path ("/" if none).
std::string RequestPath(const std::string& url, std::int32_t accessType);

/// The complete request, with the empty line at its end.
std::string RequestText(const std::string& url, std::int32_t accessType);

/// Position behind the CR LF CR LF that ends a header; nothing when it has not arrived yet.
/// @param searched number of leading bytes in which the end is known not to lie completely
std::optional<std::size_t> FindHeaderEnd(std::string_view received, std::size_t searched);

/// Value of a header line, trimmed: what follows the first occurrence of the name (anywhere, in any
/// case) and one more character, up to the line's end. Empty when absent.
std::string HeaderValue(std::string_view name, std::string_view header);

/// The first line of a header, without its end.
std::string StatusLineOf(std::string_view header);

/// The number that a text starts with: 0 without a digit, 10^18 when it is larger than that.
std::int64_t LeadingCount(std::string_view text);

/// The same, but at most the greatest 32-bit value.
std::int32_t LeadingNumber(std::string_view text);

/// What an error page is reported as.
struct HttpError {
    std::int32_t number;
    const char* description;
};

/// The error that a header announces by one of a few known texts; nothing for any other header,
/// whatever its status.
std::optional<HttpError> RecognizeErrorPage(std::string_view header);

} // namespace vesk
