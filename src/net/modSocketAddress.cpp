#include "net/modSocketAddress.h"

#include <cstddef>
#include <cstring>

namespace vesk {

sockaddr_in EndPoint(std::uint32_t address, std::uint16_t port) {
    sockaddr_in end{};
    end.sin_family = AF_INET;
    end.sin_port = htons(port);
    end.sin_addr.s_addr = address;
    return end;
}

std::string AddressText(std::uint32_t address) {
    if (address == INADDR_NONE)
        return {};
    in_addr value{};
    value.s_addr = address;
    return inet_ntoa(value);
}

std::uint32_t DottedAddress(const std::string& text) {
    // The system would take an empty text, or the part before a NUL, for an address too.
    if (text.empty() || text.find('\0') != std::string::npos)
        return INADDR_NONE;
    return inet_addr(text.c_str());
}

bool IsHostName(const std::string& text) {
    constexpr std::size_t kLongest = 255; // no host name is longer
    return !text.empty() && text.size() <= kLongest && text.find('\0') == std::string::npos;
}

std::uint32_t FirstAddressOf(const hostent* host) {
    std::uint32_t address = INADDR_NONE;
    if (host != nullptr && host->h_length == sizeof address && host->h_addr_list != nullptr &&
        host->h_addr_list[0] != nullptr)
        std::memcpy(&address, host->h_addr_list[0], sizeof address);
    return address;
}

} // namespace vesk
