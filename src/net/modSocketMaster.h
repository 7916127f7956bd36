#pragma once

#include <winsock2.h>

#include "base/UniqueHandle.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

/// What all socket objects share: the system's socket service, the hidden window that receives
/// every notification, and who receives it. One thread only.
namespace vesk {

/// Owns a socket, and closes it.
using SocketOwner = UniqueHandle<::closesocket, SOCKET, -1>;

/// Receives what the system has to say about one socket. The dispatch keeps it alive for a call.
class SocketTarget {
public:
    SocketTarget() = default;
    SocketTarget(const SocketTarget&) = delete;
    SocketTarget& operator=(const SocketTarget&) = delete;
    virtual ~SocketTarget() = default;

    /// @param event one of the FD_ values @param error 0, or the system's code
    virtual void OnNotification(int event, int error) = 0;

    /// The look-up ended. @param address first address found, in network order, when error is 0
    virtual void OnLookupDone(std::uint32_t address, int error) = 0;
};

/// Counts one more socket object; the first starts the socket service. @throws Failure
void InitiateProcesses();

/// Counts one object less; the last one ends the service.
void FinalizeProcesses();

/// Takes a socket into the registry; with the first, the message window is made.
/// @param notify whether the system is to notify the window for this socket
/// @throws Failure
void RegisterSocket(SOCKET socket, const std::weak_ptr<SocketTarget>& target, bool notify);

/// Takes a socket out of the registry and ends its notifications, those already on their way
/// included: call it before the handle is closed. With the last, the message window goes.
void UnregisterSocket(SOCKET socket);

/// Starts looking up a host name's address; the message window must exist.
/// @return the request, or 0 with the code in WSAGetLastError
std::uintptr_t StartLookup(const std::string& host, const std::weak_ptr<SocketTarget>& target);

/// Gives up a look-up: its answer, should it still come, reaches nobody.
void CancelLookup(std::uintptr_t request);

/// Keeps a connection that was accepted and waits to be claimed.
void AddAccepted(SOCKET socket);

/// Takes a connection off that list. @return false when it was not on it
bool TakeAccepted(SOCKET socket);

/// How much of everything there is. For diagnosis and tests.
struct SocketCounts {
    int objects = 0;
    std::size_t sockets = 0;
    std::size_t lookups = 0;
    std::size_t accepted = 0;
    HWND window = nullptr;
};

/// Counts what there is at this moment.
SocketCounts CountSockets();

} // namespace vesk
