#pragma once

#include <winsock2.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

/// What a socket object asks of the system's socket, and how much of it at once.
namespace vesk {

/// No datagram is larger, in bytes.
inline constexpr std::size_t kDatagramRoom = 65536;

/// How much a socket receives at once, in bytes.
struct ReceiveSizes {
    std::size_t most = 0;  ///< The most that one read takes.
    std::size_t first = 0; ///< What the first one takes.
};

/// Asks for a large receive buffer. What is not granted is read from the system.
ReceiveSizes FitReceiving(SOCKET socket);

/// No system sends less at once, in bytes: what is not more need not ask for SendSize.
inline constexpr std::size_t kLeastSendSize = 8192;

/// The system's send buffer, in bytes.
std::size_t SendSize(SOCKET socket);

/// The largest datagram that can be sent, in bytes.
std::size_t DatagramSize(SOCKET socket);

/// Binds to a port (0: any) of an address. @return 0, or the system's error code
int BindSocket(SOCKET socket, std::uint16_t port, std::uint32_t address);

/// 0 while the socket has none.
std::uint16_t LocalPortOf(SOCKET socket);

/// The other end of a connection; nothing where there is none.
std::optional<sockaddr_in> PeerOf(SOCKET socket);

/// A size as events tell it: at most the greatest 32-bit value.
inline std::int32_t EventCount(std::size_t size) {
    constexpr std::size_t kLargest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(size, kLargest));
}

/// Takes bytes of a stream. @return their number, 0 at its end, or SOCKET_ERROR
int ReceiveBytes(SOCKET socket, std::span<char> room);

/// Takes the next datagram (or with remove false, looks at it).
/// @return its size, or -1 with the code in WSAGetLastError
int ReceiveDatagram(SOCKET socket, std::span<char> room, bool remove, sockaddr_in& from);

} // namespace vesk
