#include "net/modSocketHandle.h"

#include "net/modSocketAddress.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>

namespace vesk {

namespace {

/// Asked of the system for a connection's receive buffer, and the most that one read takes. The
/// other side goes on sending while a notification is on its way here, and each one brings more:
/// with a quarter of this a download takes half as long again.
constexpr std::size_t kReceiveBuffer = std::size_t{4} * 1024 * 1024;

/// What the first read takes: most files are small, and memory for a full read would have to be
/// made for each.
constexpr std::size_t kFirstOffer = std::size_t{16} * 1024;

std::size_t OptionOf(SOCKET socket, int option) {
    int value = 0;
    int size = sizeof value;
    if (getsockopt(socket, SOL_SOCKET, option, reinterpret_cast<char*>(&value), &size) != 0 ||
        value <= 0)
        return kLeastSendSize;
    return static_cast<std::size_t>(value);
}

int Length(std::size_t size) {
    return static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
}

} // namespace

ReceiveSizes FitReceiving(SOCKET socket) {
    constexpr auto kWished = static_cast<int>(kReceiveBuffer);
    const bool granted = setsockopt(socket, SOL_SOCKET, SO_RCVBUF,
                                    reinterpret_cast<const char*>(&kWished), sizeof kWished) == 0;
    const std::size_t most =
        granted ? kReceiveBuffer : std::min(OptionOf(socket, SO_RCVBUF), kReceiveBuffer);
    return {most, std::min(most, kFirstOffer)};
}

std::size_t SendSize(SOCKET socket) {
    return OptionOf(socket, SO_SNDBUF);
}

std::size_t DatagramSize(SOCKET socket) {
    return OptionOf(socket, SO_MAX_MSG_SIZE);
}

int BindSocket(SOCKET socket, std::uint16_t port, std::uint32_t address) {
    const sockaddr_in local = EndPoint(address, port);
    const bool bound = bind(socket, reinterpret_cast<const sockaddr*>(&local), sizeof local) == 0;
    return bound ? 0 : WSAGetLastError();
}

std::uint16_t LocalPortOf(SOCKET socket) {
    sockaddr_in local{};
    int size = sizeof local;
    return getsockname(socket, reinterpret_cast<sockaddr*>(&local), &size) == 0
               ? ntohs(local.sin_port)
               : std::uint16_t{0};
}

std::optional<sockaddr_in> PeerOf(SOCKET socket) {
    sockaddr_in remote{};
    int size = sizeof remote;
    if (getpeername(socket, reinterpret_cast<sockaddr*>(&remote), &size) != 0)
        return std::nullopt;
    return remote;
}

int ReceiveBytes(SOCKET socket, std::span<char> room) {
    return recv(socket, room.data(), Length(room.size()), 0);
}

int ReceiveDatagram(SOCKET socket, std::span<char> room, bool remove, sockaddr_in& from) {
    int size = sizeof from;
    return recvfrom(socket, room.data(), Length(room.size()), remove ? 0 : MSG_PEEK,
                    reinterpret_cast<sockaddr*>(&from), &size);
}

} // namespace vesk
