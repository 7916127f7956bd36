#include "net/modSocketErrors.h"

#include "base/Failure.h"
#include "base/RunTimeError.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vesk {

namespace {

struct CodeText {
    std::int32_t code;
    const char* text;
};

constexpr std::array kCodeTexts{
    CodeText{10004, "Interrupted function call."},
    CodeText{10013, "Permission denied."},
    CodeText{10014, "Bad address."},
    CodeText{10022, "Invalid argument."},
    CodeText{10024, "Too many open files."},
    CodeText{10035, "Resource temporarily unavailable."},
    CodeText{10036, "Operation now in progress."},
    CodeText{10037, "Operation already in progress."},
    CodeText{10038, "Socket operation on nonsocket."},
    CodeText{10039, "Destination address required."},
    CodeText{10040, "Message too long."},
    CodeText{10041, "Protocol wrong type for socket."},
    CodeText{10042, "Bad protocol option."},
    CodeText{10043, "Protocol not supported."},
    CodeText{10044, "Socket type not supported."},
    CodeText{10045, "Operation not supported."},
    CodeText{10046, "Protocol family not supported."},
    CodeText{10047, "Address family not supported by protocol family."},
    CodeText{10048, "Address already in use."},
    CodeText{10049, "Cannot assign requested address."},
    CodeText{10050, "Network is down."},
    CodeText{10051, "Network is unreachable."},
    CodeText{10052, "Network dropped connection on reset."},
    CodeText{10053, "Software caused connection abort."},
    CodeText{10054, "Connection reset by peer."},
    CodeText{10055, "No buffer space available."},
    CodeText{10056, "Socket is already connected."},
    CodeText{10057, "Socket is not connected."},
    CodeText{10058, "Cannot send after socket shutdown."},
    CodeText{10060, "Connection timed out."},
    CodeText{10061, "Connection refused."},
    CodeText{10065, "No route to host."},
    CodeText{10067, "Too many processes."},
    CodeText{10091, "Network subsystem is unavailable."},
    CodeText{10092, "Winsock.dll version out of range."},
    CodeText{10093, "Successful WSAStartup not yet performed."},
    CodeText{11001, "Host not found."},
    CodeText{11002, "Nonauthoritative host not found."},
    CodeText{11003, "This is a nonrecoverable error."},
    CodeText{11004, "Valid name, no data record of requested type."},
};

std::pair<std::uint32_t, const char*> NumberAndText(SocketMisuse misuse) {
    switch (misuse) {
    case SocketMisuse::WrongState:
        return {40006,
                "Wrong protocol or connection state for the requested transaction or request"};
    case SocketMisuse::BadArgument:
        return {40014, "The argument passed to a function was not in the correct format or in the "
                       "specified range."};
    case SocketMisuse::BadAddress:
        return {40014, "Invalid argument"};
    case SocketMisuse::UnsupportedType:
        return {40018, "Unsupported variant type."};
    case SocketMisuse::InvalidState:
        break;
    }
    return {40020, "Invalid operation at current state"};
}

} // namespace

std::string GetErrorDescription(std::int32_t code) {
    const auto* const found = std::ranges::find(kCodeTexts, code, &CodeText::code);
    return found == kCodeTexts.end() ? "Unknown error." : found->text;
}

void ThrowSocketMisuse(SocketMisuse misuse, const std::string& method) {
    const auto [number, text] = NumberAndText(misuse);
    throw Failure(number, "clsSocketMaster." + method, text);
}

void ThrowSocketError(std::int32_t code, const std::string& source) {
    throw Failure(static_cast<std::uint32_t>(code), source, GetErrorDescription(code));
}

void ThrowOutOfMemory(const std::string& source) {
    throw Failure(kOutOfMemory, source, kOutOfMemoryText);
}

} // namespace vesk
