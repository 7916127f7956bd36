#pragma once

#include "net/clsByteQueue.h"
#include "net/modSocketHandle.h"
#include "net/modSocketValue.h"

#include <winsock2.h>

#include <cstddef>
#include <optional>

namespace vesk {

/// What came on one socket and was not taken yet: the bytes of a stream, which are read into memory
/// here, or whole datagrams, which stay in the system.
class clsReceiveQueue {
public:
    /// Asks for room in the system for a socket that is received on from now on.
    void Fit(SOCKET socket);

    /// Forgets all that waits here, and the socket.
    void Clear();

    /// The bytes of a stream that wait.
    [[nodiscard]] clsByteQueue& Stream() { return stream_; }
    [[nodiscard]] const clsByteQueue& Stream() const { return stream_; }

    /// Reads a stream once, the more at a time the more comes.
    /// @return bytes read, 0 at its end, or SOCKET_ERROR with the code in WSAGetLastError
    /// @throws std::bad_alloc
    int ReadOnce(SOCKET socket);

    /// The stream's bytes as the kind asked for, see clsSocketMaster::GetData.
    /// @param limit greatest number of bytes @param remove false leaves them here @throws Failure
    SocketValue TakeBytes(VarType type, std::size_t limit, bool remove, const char* method);

    /// Notes that the datagram that waits is to be announced.
    /// @return its size; nothing when it was announced before, or with the code in WSAGetLastError
    /// when there is none
    std::optional<int> AnnounceDatagram(SOCKET socket);

    /// Size of the datagram that waits; -1 with the code in WSAGetLastError when there is none.
    [[nodiscard]] static int NextDatagramSize(SOCKET socket);

    /// The datagram that waits, or an empty value. With remove it is taken whole: what the limit
    /// leaves is gone. @param sender set when it is removed @throws Failure
    SocketValue TakeDatagram(SOCKET socket, VarType type, std::size_t limit, bool remove,
                             const char* method, std::optional<sockaddr_in>& sender);

private:
    clsByteQueue stream_;
    ReceiveSizes sizes_;
    std::size_t offered_ = 0;        ///< What the next read takes.
    bool datagramAnnounced_ = false; ///< It was not taken yet.
};

} // namespace vesk
