#include "net/SocketCore.h"

#include "base/Failure.h"
#include "base/Trace.h"
#include "net/modSocketAddress.h"
#include "net/modSocketErrors.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vesk {

namespace {

/// Asked of the system for a connection's receive buffer, and the most that one read takes. The
/// other side goes on sending while a notification is on its way here, and each one brings more:
/// with a quarter of this a download takes half as long again.
constexpr std::size_t kReceiveBuffer = std::size_t{4} * 1024 * 1024;

/// What the first read takes: most files are small, and memory for a full read would have to be
/// made for each.
constexpr std::size_t kFirstOffer = std::size_t{16} * 1024;

/// No host name is longer.
constexpr std::size_t kLongestHost = 255;

std::string StateName(SocketState state) {
    constexpr std::array kNames{
        "sckClosed",        "sckOpen",         "sckListening",  "sckConnectionPending",
        "sckResolvingHost", "sckHostResolved", "sckConnecting", "sckConnected",
        "sckClosing",       "sckError"};
    return kNames.at(static_cast<std::size_t>(state));
}

std::size_t OptionOf(SOCKET socket, int option, std::size_t otherwise) {
    int value = 0;
    int size = sizeof value;
    if (getsockopt(socket, SOL_SOCKET, option, reinterpret_cast<char*>(&value), &size) != 0 ||
        value <= 0)
        return otherwise;
    return static_cast<std::size_t>(value);
}

} // namespace

void SocketCore::Detach() {
    owner_ = nullptr;
    Close();
}

std::string SocketCore::RemoteHostIP() const {
    return AddressText(peerAddress_);
}

void SocketCore::RequireClosed(const char* method) const {
    if (state_ != SocketState::sckClosed)
        ThrowSocketMisuse(SocketMisuse::InvalidState, method);
}

void SocketCore::SetState(SocketState state) {
    state_ = state;
    Trace("STATE: " + StateName(state));
}

void SocketCore::Fail(int code, const char* source) {
    FailWith(code, GetErrorDescription(code), source);
}

void SocketCore::FailWith(int code, const std::string& text, const char* source) {
    SetState(SocketState::sckError);
    SocketErrorInfo error;
    error.number = code;
    error.description = text;
    error.source = source;
    bool cancelDisplay = true;
    Raise([&](SocketEvents& owner) { owner.OnError(error, cancelDisplay); });
    if (!cancelDisplay)
        MessageBoxA(nullptr, text.c_str(), source, MB_OK | MB_ICONEXCLAMATION);
}

void SocketCore::Close() {
    ++connection_;
    if (lookup_ != 0)
        CancelLookup(std::exchange(lookup_, 0));
    if (socket_) {
        UnregisterSocket(socket_.Get());
        Trace("OK Closed socket: " + std::to_string(socket_.Get()));
        socket_.Reset();
    }
    received_.Clear();
    sending_.Clear();
    datagrams_.clear();
    datagramAnnounced_ = false;
    localPort_ = 0;
    peerAddress_ = INADDR_NONE;
    if (state_ != SocketState::sckClosed)
        SetState(SocketState::sckClosed);
}

// Opening

void SocketCore::CreateSocket(const char* source) {
    const bool stream = protocol == SocketProtocol::TCP;
    socket_.Reset(::socket(AF_INET, stream ? SOCK_STREAM : SOCK_DGRAM, 0));
    if (!socket_) {
        const int error = WSAGetLastError();
        SetState(SocketState::sckError);
        ThrowSocketError(error, source);
    }
    Trace("OK Created socket: " + std::to_string(socket_.Get()));
    try {
        RegisterSocket(socket_.Get(), weak_from_this(), true);
    } catch (const Failure&) {
        socket_.Reset();
        SetState(SocketState::sckError);
        throw;
    }
    ReadSystemSizes();
}

void SocketCore::ReadSystemSizes() {
    constexpr auto kWished = static_cast<int>(kReceiveBuffer);
    setsockopt(socket_.Get(), SOL_SOCKET, SO_RCVBUF, reinterpret_cast<const char*>(&kWished),
               sizeof kWished);
    constexpr std::size_t kUsualSize = 8192;
    receiveSize_ = std::min(OptionOf(socket_.Get(), SO_RCVBUF, kUsualSize), kReceiveBuffer);
    offeredSize_ = std::min(receiveSize_, kFirstOffer);
    sendSize_ = OptionOf(socket_.Get(), SO_SNDBUF, kUsualSize);
    if (protocol == SocketProtocol::UDP)
        largestDatagram_ = OptionOf(socket_.Get(), SO_MAX_MSG_SIZE, kUsualSize);
}

int SocketCore::BindTo(std::uint16_t port, std::uint32_t address) {
    const sockaddr_in local = EndPoint(address, port);
    if (bind(socket_.Get(), reinterpret_cast<const sockaddr*>(&local), sizeof local) != 0)
        return WSAGetLastError();
    ReadLocalPort();
    return 0;
}

void SocketCore::ReadLocalPort() {
    sockaddr_in local{};
    int size = sizeof local;
    if (getsockname(socket_.Get(), reinterpret_cast<sockaddr*>(&local), &size) == 0)
        localPort_ = ntohs(local.sin_port);
}

void SocketCore::Connect(const SocketValue& host, const SocketValue& port) {
    RequireClosed("Connect");
    const std::string newHost = IsGiven(host) ? HostOf(host, "Connect") : remoteHost;
    const std::uint16_t newPort = IsGiven(port) ? PortOf(port, "Connect") : remotePort;
    remoteHost = newHost;
    remotePort = newPort;
    if (!socket_) {
        CreateSocket("clsSocketMaster.Connect");
        const int error = wishedLocalPort == 0 ? 0 : BindTo(wishedLocalPort, INADDR_ANY);
        if (error != 0)
            return Fail(error, "clsSocketMaster.Connect");
    }
    const std::uint32_t address = DottedAddress(remoteHost);
    if (address == INADDR_NONE)
        StartResolving();
    else
        GoOnWithAddress(address);
}

void SocketCore::StartResolving() {
    SetState(SocketState::sckResolvingHost);
    // The system takes an empty name for this machine, and a cut-off name is another one.
    if (remoteHost.empty() || remoteHost.size() > kLongestHost ||
        remoteHost.find('\0') != std::string::npos)
        return Fail(WSAHOST_NOT_FOUND, "clsSocketMaster.Connect");
    lookup_ = StartLookup(remoteHost, weak_from_this());
    if (lookup_ == 0)
        Fail(WSAGetLastError(), "clsSocketMaster.Connect");
}

void SocketCore::OnLookupDone(std::uint32_t address, int error) {
    lookup_ = 0;
    if (state_ != SocketState::sckResolvingHost)
        return;
    if (error != 0)
        return Fail(error, "clsSocketMaster.OnLookupDone");
    SetState(SocketState::sckHostResolved);
    GoOnWithAddress(address);
}

void SocketCore::GoOnWithAddress(std::uint32_t address) {
    remoteAddress_ = address;
    resolvedHost_ = remoteHost;
    if (protocol == SocketProtocol::UDP) {
        const int error = localPort_ != 0 ? 0 : BindTo(0, INADDR_ANY);
        return error == 0 ? SetState(SocketState::sckOpen) : Fail(error, "clsSocketMaster.Connect");
    }
    SetState(SocketState::sckConnecting);
    const sockaddr_in remote = EndPoint(address, remotePort);
    if (connect(socket_.Get(), reinterpret_cast<const sockaddr*>(&remote), sizeof remote) == 0)
        return;
    const int error = WSAGetLastError();
    if (error != WSAEWOULDBLOCK)
        Fail(error, "clsSocketMaster.Connect");
}

void SocketCore::Bind(const SocketValue& port, const SocketValue& address) {
    RequireClosed("Bind");
    const std::uint16_t wished = IsGiven(port) ? PortOf(port, "Bind") : wishedLocalPort;
    std::uint32_t local = INADDR_ANY;
    if (IsGiven(address)) {
        local = DottedAddress(HostOf(address, "Bind"));
        if (local == INADDR_NONE)
            ThrowSocketMisuse(SocketMisuse::BadAddress, "Bind");
    }
    Close(); // a socket bound before
    CreateSocket("clsSocketMaster.Bind");
    const int error = BindTo(wished, local);
    if (error != 0) {
        Close();
        if (error == WSAEADDRNOTAVAIL)
            ThrowSocketMisuse(SocketMisuse::BadAddress, "Bind");
        ThrowSocketError(error, "clsSocketMaster.Bind");
    }
    wishedLocalPort = wished;
    if (protocol == SocketProtocol::UDP)
        SetState(SocketState::sckOpen);
}

void SocketCore::Listen() {
    RequireClosed("Listen");
    if (protocol != SocketProtocol::TCP)
        ThrowSocketMisuse(SocketMisuse::InvalidState, "Listen");
    int error = 0;
    if (!socket_) {
        CreateSocket("clsSocketMaster.Listen");
        error = BindTo(wishedLocalPort, INADDR_ANY);
    }
    if (error == 0 && listen(socket_.Get(), SOMAXCONN) != 0)
        error = WSAGetLastError();
    if (error != 0) {
        Close();
        ThrowSocketError(error, "clsSocketMaster.Listen");
    }
    SetState(SocketState::sckListening);
}

void SocketCore::Accept(SOCKET request) {
    RequireClosed("Accept");
    if (protocol != SocketProtocol::TCP || !TakeAccepted(request))
        ThrowSocketMisuse(SocketMisuse::WrongState, "Accept");
    Close(); // a socket bound before
    UnregisterSocket(request);
    socket_.Reset(request);
    try {
        RegisterSocket(request, weak_from_this(), true);
    } catch (const Failure&) {
        socket_.Reset();
        SetState(SocketState::sckError);
        throw;
    }
    ReadSystemSizes();
    ReadLocalPort();
    sockaddr_in remote{};
    int size = sizeof remote;
    if (getpeername(request, reinterpret_cast<sockaddr*>(&remote), &size) == 0) {
        peerAddress_ = remote.sin_addr.s_addr;
        remoteHost = AddressText(peerAddress_);
        remotePort = ntohs(remote.sin_port);
    }
    SetState(SocketState::sckConnected);
}

} // namespace vesk
