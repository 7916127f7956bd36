#include "net/clsUnclaimedConnection.h"

#include "base/modTrace.h"

#include <string>

namespace vesk {

clsUnclaimedConnection::clsUnclaimedConnection(SOCKET socket,
                                               const std::weak_ptr<SocketTarget>& listener)
    : socket_(socket) {
    RegisterSocket(socket, listener, false);
    AddAccepted(socket);
}

clsUnclaimedConnection::~clsUnclaimedConnection() {
    if (!TakeAccepted(socket_.Get())) {
        static_cast<void>(socket_.Release());
        return;
    }
    UnregisterSocket(socket_.Get());
    Trace("OK Closed accepted socket: " + std::to_string(socket_.Get()));
}

} // namespace vesk
