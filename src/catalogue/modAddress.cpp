#include "catalogue/modAddress.h"

#include <algorithm>

namespace vesk {

namespace {

bool IsControl(char c) {
    constexpr unsigned char kDelete = 0x7F;
    const auto byte = static_cast<unsigned char>(c);
    return byte < ' ' || byte == kDelete;
}

bool IsHostCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '-' || c == '_';
}

} // namespace

std::string AddressFault(std::string_view address) {
    constexpr std::string_view kScheme = "http://";
    if (std::ranges::any_of(address, IsControl))
        return "it holds a control character";
    if (address.find(' ') != std::string_view::npos)
        return "it holds a blank, which few servers take: write \"%20\"";
    const bool hasScheme = address.starts_with(kScheme);
    if (hasScheme)
        address.remove_prefix(kScheme.size());
    const std::string_view host = address.substr(0, address.find('/'));
    if (!hasScheme && address.find("://") != std::string_view::npos)
        return "only \"http://\" in lower case is supported";
    if (host.empty())
        return "there is no host";
    if (host.find('@') != std::string_view::npos)
        return "user names are not supported";
    if (host.find(':') != std::string_view::npos)
        return "only port 80 is supported, and no port can be given";
    return std::ranges::all_of(host, IsHostCharacter) ? "" : "its host is not a valid host name";
}

} // namespace vesk
