#include "net/modSocketNames.h"

#include <winsock2.h>

#include <array>
#include <cstddef>

namespace vesk {

std::string StateName(SocketState state) {
    constexpr std::array kNames{
        "sckClosed",        "sckOpen",         "sckListening",  "sckConnectionPending",
        "sckResolvingHost", "sckHostResolved", "sckConnecting", "sckConnected",
        "sckClosing",       "sckError"};
    return kNames.at(static_cast<std::size_t>(state));
}

std::string EventName(int event) {
    switch (event) {
    case FD_READ:
        return "FD_READ";
    case FD_WRITE:
        return "FD_WRITE";
    case FD_ACCEPT:
        return "FD_ACCEPT";
    case FD_CONNECT:
        return "FD_CONNECT";
    case FD_CLOSE:
        return "FD_CLOSE";
    default:
        return std::to_string(event);
    }
}

} // namespace vesk
