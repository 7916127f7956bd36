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
        Mark(unsigned& current, unsigned connection)
            : current_(current), previous_(std::exchange(current, connection)) {}
        Mark(const Mark&) = delete;
        Mark& operator=(const Mark&) = delete;
        ~Mark() { current_ = previous_; }

    private:
        unsigned& current_;
        unsigned previous_;
    };

    void Append(std::string_view bytes) { stream_.Append(bytes); }
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
