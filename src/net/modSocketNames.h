#pragma once

#include "net/clsSocketMaster.h"

#include <string>

/// Names for the trace of a socket.
namespace vesk {

/// "sckConnected" and the like.
std::string StateName(SocketState state);

/// "FD_READ" and the like; the number of any other notification.
std::string EventName(int event);

} // namespace vesk
