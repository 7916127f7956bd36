#include "net/modSocketMaster.h"

#include "base/Failure.h"
#include "base/UniqueHandle.h"
#include "base/modTrace.h"
#include "net/modSocketAddress.h"
#include "net/modSocketErrors.h"

#include <array>
#include <cstring>
#include <exception>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace vesk {

namespace {

constexpr UINT kLookupMessage = 2048;
constexpr UINT kSocketMessage = 2049;
/// Posted behind the last notification of a socket that is about to be closed.
constexpr UINT kRetiredMessage = 2050;

constexpr WORD kWinsockVersion = 0x0101;

using WindowHandle = UniqueHandle<::DestroyWindow, HWND>;
using LookupBuffer = std::array<char, 1024>;

struct Lookup {
    std::weak_ptr<SocketTarget> target;
    std::unique_ptr<LookupBuffer> buffer;
};

/// Collections are keyed by a letter for their kind and the handle.
std::string SocketKey(std::uintptr_t socket) {
    return std::to_string(socket).insert(0, 1, 'S');
}
std::string LookupKey(std::uintptr_t request) {
    return std::to_string(request).insert(0, 1, 'R');
}

struct Registry {
    int objects = 0;
    WindowHandle window;
    WNDPROC previousProcedure = nullptr;
    std::map<std::string, std::weak_ptr<SocketTarget>> sockets;
    std::map<std::string, Lookup> lookups;
    std::set<std::string> accepted;
    /// How many retirements of a handle are still on their way through the message queue. Until
    /// the last has passed, notifications for that number are those of a closed socket, whoever
    /// has been given the number since.
    std::map<std::string, int> retired;
    /// Results of look-ups given up by sockets that took the window with them. The system may
    /// still write into them and nobody will hear when it has.
    std::vector<std::unique_ptr<LookupBuffer>> abandoned;
};

Registry& TheRegistry() {
    static Registry registry;
    return registry;
}

void OnSocketMessage(WPARAM socket, LPARAM detail) {
    Registry& registry = TheRegistry();
    const std::string key = SocketKey(socket);
    if (registry.retired.contains(key) || registry.accepted.contains(key))
        return;
    const auto found = registry.sockets.find(key);
    if (found == registry.sockets.end())
        return;
    if (const auto target = found->second.lock())
        target->OnNotification(WSAGETSELECTEVENT(detail), WSAGETSELECTERROR(detail));
}

void OnRetiredMessage(WPARAM socket) {
    Registry& registry = TheRegistry();
    const auto found = registry.retired.find(SocketKey(socket));
    if (found != registry.retired.end() && --found->second == 0)
        registry.retired.erase(found);
}

/// First address in the host entry that a look-up left at the start of its buffer.
std::uint32_t FirstAddressIn(const LookupBuffer& buffer) {
    hostent host{};
    std::memcpy(&host, buffer.data(), sizeof host);
    return FirstAddressOf(&host);
}

void OnLookupMessage(WPARAM request, LPARAM detail) {
    Registry& registry = TheRegistry();
    auto node = registry.lookups.extract(LookupKey(request));
    if (node.empty())
        return;
    const Lookup lookup = std::move(node.mapped());
    const auto target = lookup.target.lock();
    if (!target)
        return;
    int error = WSAGETASYNCERROR(detail);
    const std::uint32_t address = error == 0 ? FirstAddressIn(*lookup.buffer) : INADDR_NONE;
    if (error == 0 && address == INADDR_NONE)
        error = WSANO_DATA;
    target->OnLookupDone(address, error);
}

LRESULT CALLBACK ForwardMessage(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message < kLookupMessage || message > kRetiredMessage)
        return CallWindowProcA(TheRegistry().previousProcedure, window, message, wparam, lparam);
    try {
        if (message == kSocketMessage)
            OnSocketMessage(wparam, lparam);
        else if (message == kLookupMessage)
            OnLookupMessage(wparam, lparam);
        else
            OnRetiredMessage(wparam);
    } catch (const std::exception& failure) {
        // An exception must not leave through the system's own frames.
        Trace(std::string("ERROR in a socket event handler: ") + failure.what());
    }
    return 0;
}

/// A child of the message-only window: it is never shown and exists without a display too.
void EnsureWindow() {
    Registry& registry = TheRegistry();
    if (registry.window)
        return;
    registry.window.Reset(CreateWindowExA(0, "STATIC", "SOCKET_WINDOW", 0, 0, 0, 0, 0, HWND_MESSAGE,
                                          nullptr, GetModuleHandleA(nullptr), nullptr));
    if (!registry.window)
        ThrowOutOfMemory("modSocketMaster.RegisterSocket");
    registry.previousProcedure = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(
        registry.window.Get(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ForwardMessage)));
    if (registry.previousProcedure == nullptr) { // no event would ever reach a socket
        registry.window.Reset();
        ThrowOutOfMemory("modSocketMaster.RegisterSocket");
    }
    Trace("OK Created winsock message window " +
          std::to_string(reinterpret_cast<std::uintptr_t>(registry.window.Get())));
}

void DestroyWindowWhenUnused() {
    Registry& registry = TheRegistry();
    if (!registry.sockets.empty() || !registry.window)
        return;
    for (auto& [key, lookup] : registry.lookups)
        registry.abandoned.push_back(std::move(lookup.buffer));
    registry.lookups.clear();
    registry.retired.clear(); // messages still queued go with the window
    const auto number = reinterpret_cast<std::uintptr_t>(registry.window.Get());
    registry.window.Reset();
    Trace("OK Destroyed winsock message window " + std::to_string(number));
}

} // namespace

void InitiateProcesses() {
    Registry& registry = TheRegistry();
    if (registry.objects == 0) {
        WSADATA data{};
        const int error = WSAStartup(kWinsockVersion, &data);
        if (error != 0) {
            Trace("ERROR trying to initiate winsock service");
            ThrowSocketError(error, "modSocketMaster.InitiateProcesses");
        }
        Trace("OK Winsock service initiated");
    }
    ++registry.objects;
}

void FinalizeProcesses() {
    if (--TheRegistry().objects > 0)
        return;
    WSACleanup();
    Trace("OK Winsock service finalized");
}

void RegisterSocket(SOCKET socket, const std::weak_ptr<SocketTarget>& target, bool notify) {
    EnsureWindow();
    Registry& registry = TheRegistry();
    registry.sockets.insert_or_assign(SocketKey(socket), target);
    // An accepted socket inherits the notifications of the listening one: none must be asked for.
    const long events = notify ? FD_READ | FD_WRITE | FD_ACCEPT | FD_CONNECT | FD_CLOSE : 0;
    const UINT message = notify ? kSocketMessage : 0;
    if (WSAAsyncSelect(socket, registry.window.Get(), message, events) == 0)
        return;
    const int error = WSAGetLastError();
    Trace("ERROR trying to register events from socket " + std::to_string(socket));
    UnregisterSocket(socket);
    ThrowSocketError(error, "modSocketMaster.RegisterSocket");
}

void UnregisterSocket(SOCKET socket) {
    Registry& registry = TheRegistry();
    const std::string key = SocketKey(socket);
    if (registry.sockets.erase(key) == 0)
        return;
    WSAAsyncSelect(socket, registry.window.Get(), 0, 0);
    if (PostMessageA(registry.window.Get(), kRetiredMessage, socket, 0) != 0)
        ++registry.retired[key];
    DestroyWindowWhenUnused();
}

std::uintptr_t StartLookup(const std::string& host, const std::weak_ptr<SocketTarget>& target) {
    Registry& registry = TheRegistry();
    auto buffer = std::make_unique<LookupBuffer>();
    const auto request = reinterpret_cast<std::uintptr_t>(
        WSAAsyncGetHostByName(registry.window.Get(), kLookupMessage, host.c_str(), buffer->data(),
                              static_cast<int>(buffer->size())));
    if (request == 0)
        return 0;
    Lookup& lookup = registry.lookups[LookupKey(request)];
    if (lookup.buffer) // the number of a look-up given up, whose answer never came
        registry.abandoned.push_back(std::move(lookup.buffer));
    lookup = {target, std::move(buffer)};
    return request;
}

void CancelLookup(std::uintptr_t request) {
    Registry& registry = TheRegistry();
    const auto found = registry.lookups.find(LookupKey(request));
    if (found == registry.lookups.end())
        return;
    // The answer may still come, so the entry stays to receive it.
    found->second.target.reset();
    WSACancelAsyncRequest(reinterpret_cast<HANDLE>(request));
}

void AddAccepted(SOCKET socket) {
    Registry& registry = TheRegistry();
    if (registry.accepted.empty())
        Trace("OK Created accept collection");
    registry.accepted.insert(SocketKey(socket));
}

bool TakeAccepted(SOCKET socket) {
    Registry& registry = TheRegistry();
    if (registry.accepted.erase(SocketKey(socket)) == 0)
        return false;
    if (registry.accepted.empty())
        Trace("OK Destroyed accept collection");
    return true;
}

SocketCounts CountSockets() {
    const Registry& registry = TheRegistry();
    SocketCounts counts;
    counts.objects = registry.objects;
    counts.sockets = registry.sockets.size();
    counts.accepted = registry.accepted.size();
    counts.window = registry.window.Get();
    for (const auto& [key, lookup] : registry.lookups)
        counts.lookups += lookup.target.expired() ? 0 : 1;
    return counts;
}

} // namespace vesk
