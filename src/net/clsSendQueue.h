#pragma once

#include "net/clsByteQueue.h"
#include "net/modSocketHandle.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>

namespace vesk {

/// What waits to be sent on one socket: the bytes of a stream, or whole datagrams.
class clsSendQueue {
public:
    /// Marks a connection as the one being sent on, until the end of a scope.
    class Mark {
    public:
        /// @param current the number of the connection that is sent on; outlives this object
        /// @param connection what it becomes; the end of the scope gives it its value of before
        Mark(unsigned& current, unsigned connection)
            : current_(current), previous_(std::exchange(current, connection)) {}
        Mark(const Mark&) = delete;
        Mark& operator=(const Mark&) = delete;
        ~Mark() { current_ = previous_; }

    private:
        unsigned& current_;
        unsigned previous_;
    };

    /// Adds bytes to the stream. @throws std::bad_alloc, as does AppendDatagram
    void Append(std::string_view bytes) { stream_.Append(bytes); }

    /// Adds a datagram. @param address where it goes, in network order
    /// @param port in the machine's order @param bytes may be none
    void AppendDatagram(std::uint32_t address, std::uint16_t port, std::string_view bytes);

    /// Forgets all that waits, and the socket.
    void Clear();

    /// False also while an empty datagram waits.
    [[nodiscard]] bool Empty() const { return stream_.Empty() && datagrams_.empty(); }
    [[nodiscard]] std::size_t Bytes() const;

    /// Hands the system the next piece, a datagram whole. A datagram that it refuses is dropped.
    /// @return bytes taken, or SOCKET_ERROR with the code in WSAGetLastError
    int SendPiece(SOCKET socket);

private:
    struct Datagram {
        std::uint32_t address;
        std::uint16_t port;
        std::string bytes;
    };

    [[nodiscard]] std::size_t NextPieceSize(SOCKET socket);
    int SendDatagram(SOCKET socket);

    std::size_t sendSize_ = 0; ///< The socket's, once asked for.
    clsByteQueue stream_;
    std::deque<Datagram> datagrams_;
};

} // namespace vesk
