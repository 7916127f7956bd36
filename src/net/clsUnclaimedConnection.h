#pragma once

#include "net/modSocketMaster.h"

#include <memory>

namespace vesk {

/// An accepted connection until it is claimed. What nobody claims is closed.
class clsUnclaimedConnection {
public:
    /// Puts a connection on the list of those that Accept may claim.
    /// @param socket is owned from now on @param listener receives its notifications until then
    /// @throws Failure; the connection is then closed
    clsUnclaimedConnection(SOCKET socket, const std::weak_ptr<SocketTarget>& listener);
    clsUnclaimedConnection(const clsUnclaimedConnection&) = delete;
    clsUnclaimedConnection& operator=(const clsUnclaimedConnection&) = delete;
    ~clsUnclaimedConnection();

private:
    SocketOwner socket_;
};

} // namespace vesk
