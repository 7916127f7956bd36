#pragma once

namespace vesk {

/// Whether the system says that it has a network connection. False where it cannot be asked.
bool SystemIsConnected();

} // namespace vesk
