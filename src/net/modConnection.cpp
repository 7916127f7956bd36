#include "net/modConnection.h"

#include "base/modSystemLibrary.h"

#include <windows.h>

#include <wininet.h>

namespace vesk {

bool SystemIsConnected() {
    const auto isConnected = SystemFunction<decltype(&InternetGetConnectedState)>(
        "wininet.dll", "InternetGetConnectedState");
    DWORD flags = 0;
    return isConnected != nullptr && isConnected(&flags, 0) != FALSE;
}

} // namespace vesk
