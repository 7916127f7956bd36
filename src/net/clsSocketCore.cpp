#include "net/clsSocketCore.h"

#include "base/Failure.h"
#include "base/RunTimeError.h"
#include "base/modTrace.h"
#include "net/clsUnclaimedConnection.h"
#include "net/modSocketAddress.h"
#include "net/modSocketErrors.h"
#include "net/modSocketNames.h"
#include "net/modSocketValue.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vesk {

namespace {

constexpr const char* kNotificationSource = "clsSocketMaster.PostSocket";
constexpr const char* kSendSource = "clsSocketMaster.SendBufferedData";

} // namespace

void clsSocketCore::Detach() {
    owner_ = nullptr;
    Close();
}

std::string clsSocketCore::RemoteHostIP() const {
    return AddressText(peerAddress_);
}

std::uint16_t clsSocketCore::LocalPort() const {
    if (!socket_)
        return wishedLocalPort;
    return localPort_ != 0 ? localPort_ : LocalPortOf(socket_.Get());
}

void clsSocketCore::RequireClosed(const char* method) const {
    if (state_ != SocketState::sckClosed)
        ThrowSocketMisuse(SocketMisuse::InvalidState, method);
}

bool clsSocketCore::IsUsable() const {
    return state_ ==
           (protocol == SocketProtocol::TCP ? SocketState::sckConnected : SocketState::sckOpen);
}

void clsSocketCore::SetState(SocketState state) {
    state_ = state;
    Trace("STATE: " + StateName(state));
}

void clsSocketCore::Fail(int code, const char* source) {
    FailWith(code, GetErrorDescription(code), source);
}

void clsSocketCore::FailWith(int code, const std::string& text, const char* source) {
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

void clsSocketCore::Close() {
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
    localPort_ = 0;
    peerAddress_ = INADDR_NONE;
    if (state_ != SocketState::sckClosed)
        SetState(SocketState::sckClosed);
}

// Opening

void clsSocketCore::CreateSocket(const char* source) {
    const bool stream = protocol == SocketProtocol::TCP;
    socket_.Reset(::socket(AF_INET, stream ? SOCK_STREAM : SOCK_DGRAM, 0));
    if (!socket_) {
        const int error = WSAGetLastError();
        SetState(SocketState::sckError);
        ThrowSocketError(error, source);
    }
    Trace("OK Created socket: " + std::to_string(socket_.Get()));
    AskForNotifications();
}

/// Asks for the notifications of the socket, which is new to this object.
void clsSocketCore::AskForNotifications() {
    try {
        RegisterSocket(socket_.Get(), weak_from_this(), true);
    } catch (const Failure&) {
        socket_.Reset();
        SetState(SocketState::sckError);
        throw;
    }
    received_.Fit(socket_.Get());
}

int clsSocketCore::BindTo(std::uint16_t port, std::uint32_t address) {
    const int error = BindSocket(socket_.Get(), port, address);
    if (error == 0)
        localPort_ = LocalPortOf(socket_.Get());
    return error;
}

void clsSocketCore::Connect(const SocketValue& host, const SocketValue& port) {
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

void clsSocketCore::StartResolving() {
    SetState(SocketState::sckResolvingHost);
    if (!IsHostName(remoteHost))
        return Fail(WSAHOST_NOT_FOUND, "clsSocketMaster.Connect");
    lookup_ = StartLookup(remoteHost, weak_from_this());
    if (lookup_ == 0)
        Fail(WSAGetLastError(), "clsSocketMaster.Connect");
}

void clsSocketCore::OnLookupDone(std::uint32_t address, int error) {
    lookup_ = 0;
    if (state_ != SocketState::sckResolvingHost)
        return;
    if (error != 0)
        return Fail(error, "clsSocketMaster.OnLookupDone");
    SetState(SocketState::sckHostResolved);
    GoOnWithAddress(address);
}

void clsSocketCore::GoOnWithAddress(std::uint32_t address) {
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

void clsSocketCore::Bind(const SocketValue& port, const SocketValue& address) {
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

void clsSocketCore::Listen() {
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

void clsSocketCore::Accept(SOCKET request) {
    RequireClosed("Accept");
    if (protocol != SocketProtocol::TCP || !TakeAccepted(request))
        ThrowSocketMisuse(SocketMisuse::WrongState, "Accept");
    Close(); // a socket bound before
    UnregisterSocket(request);
    socket_.Reset(request);
    AskForNotifications();
    if (const auto remote = PeerOf(request)) {
        peerAddress_ = remote->sin_addr.s_addr;
        remoteHost = AddressText(peerAddress_);
        remotePort = ntohs(remote->sin_port);
    }
    SetState(SocketState::sckConnected);
}

void clsSocketCore::OnNotification(int event, int error) {
    if (error != 0)
        return Fail(error, kNotificationSource);
    const bool connected = state_ == SocketState::sckConnected;
    const bool open = protocol == SocketProtocol::UDP && state_ == SocketState::sckOpen;
    if (event == FD_READ && connected)
        ReceiveOnce();
    else if (event == FD_READ && open)
        OnReadableDatagram();
    else if (event == FD_WRITE && IsUsable() && sending_.Bytes() > 0)
        SendBuffered();
    else if (event == FD_ACCEPT && state_ == SocketState::sckListening)
        OnAcceptable();
    else if (event == FD_CONNECT && state_ == SocketState::sckConnecting)
        OnConnected();
    else if (event == FD_CLOSE && connected)
        OnClosed();
    else
        Trace("WARNING: Omitting " + EventName(event));
}

void clsSocketCore::OnConnected() {
    peerAddress_ = remoteAddress_;
    SetState(SocketState::sckConnected);
    Raise([](SocketEvents& owner) { owner.OnConnect(); });
}

void clsSocketCore::OnAcceptable() {
    const SOCKET accepted = accept(socket_.Get(), nullptr, nullptr);
    if (accepted == INVALID_SOCKET)
        return FailUnlessEmpty(); // who called may have hung up again
    const clsUnclaimedConnection connection(accepted, weak_from_this());
    Raise([&](SocketEvents& owner) { owner.OnConnectionRequest(accepted); });
}

// Receiving

/// Reads once into the receive buffer and reports what came.
/// @return true when something came and the connection is still there to go on with
bool clsSocketCore::ReceiveOnce() {
    int count = 0;
    try {
        count = received_.ReadOnce(socket_.Get());
    } catch (const std::bad_alloc&) {
        FailWith(kOutOfMemory, kOutOfMemoryText, kNotificationSource);
        return false;
    }
    if (count == SOCKET_ERROR)
        FailUnlessEmpty();
    if (count <= 0)
        return false;
    const unsigned connection = connection_;
    Raise([&](SocketEvents& owner) { owner.OnDataArrival(count); });
    return StillOn(connection) && state_ == SocketState::sckConnected;
}

/// After a call of the system that found nothing or failed.
void clsSocketCore::FailUnlessEmpty() {
    const int error = WSAGetLastError();
    if (error != WSAEWOULDBLOCK)
        Fail(error, kNotificationSource);
}

void clsSocketCore::OnClosed() {
    // The notice can overtake the last bytes: they are still in the system's buffer.
    const unsigned connection = connection_;
    while (ReceiveOnce()) {
    }
    if (!StillOn(connection) || state_ != SocketState::sckConnected)
        return;
    SetState(SocketState::sckClosing);
    Raise([](SocketEvents& owner) { owner.OnCloseSck(); });
}

void clsSocketCore::OnReadableDatagram() {
    if (const auto size = received_.AnnounceDatagram(socket_.Get()))
        Raise([&](SocketEvents& owner) { owner.OnDataArrival(*size); });
    else
        FailUnlessEmpty();
}

std::size_t clsSocketCore::BytesReceived() const {
    if (protocol == SocketProtocol::TCP)
        return received_.Stream().Size();
    const int size =
        state_ == SocketState::sckOpen ? clsReceiveQueue::NextDatagramSize(socket_.Get()) : 0;
    return static_cast<std::size_t>(std::max(size, 0));
}

SocketValue clsSocketCore::TakeData(VarType type, const SocketValue& maxLen, bool remove,
                                    const char* method) {
    if (!IsUsable())
        ThrowSocketMisuse(SocketMisuse::WrongState, method);
    const std::size_t limit = LengthLimitOf(maxLen, method);
    if (protocol == SocketProtocol::TCP)
        return received_.TakeBytes(type, limit, remove, method);
    std::optional<sockaddr_in> sender;
    SocketValue value = received_.TakeDatagram(socket_.Get(), type, limit, remove, method, sender);
    if (sender) {
        peerAddress_ = sender->sin_addr.s_addr;
        remotePort = ntohs(sender->sin_port);
    }
    return value;
}

// Sending

void clsSocketCore::SendData(const SocketValue& data) {
    const bool stream = protocol == SocketProtocol::TCP;
    const bool openNow = !stream && state_ == SocketState::sckClosed;
    if (!IsUsable() && !openNow)
        ThrowSocketMisuse(SocketMisuse::WrongState, "SendData");
    const std::string_view bytes = BytesOf(data, "SendData");
    if (openNow)
        Bind({}, {});
    if (stream)
        sending_.Append(bytes);
    else
        sending_.AppendDatagram(DatagramTarget(), remotePort, bytes);
    SendBuffered();
}

/// Address of the remote host, looked up here unless that was done before.
std::uint32_t clsSocketCore::DatagramTarget() const {
    const std::uint32_t address = DottedAddress(remoteHost);
    if (address != INADDR_NONE)
        return address;
    if (remoteHost == resolvedHost_ && remoteAddress_ != INADDR_NONE)
        return remoteAddress_;
    const std::uint32_t found =
        remoteHost.empty() ? INADDR_NONE : FirstAddressOf(gethostbyname(remoteHost.c_str()));
    if (found == INADDR_NONE)
        ThrowSocketError(WSAHOST_NOT_FOUND, "clsSocketMaster.SendData");
    return found;
}

void clsSocketCore::SendBuffered() {
    if (sendingConnection_ == connection_)
        return; // called from an event of the loop below, which goes on with the new bytes
    const unsigned connection = connection_;
    const clsSendQueue::Mark mark(sendingConnection_, connection);
    while (!sending_.Empty()) {
        const int sent = sending_.SendPiece(socket_.Get());
        if (sent == SOCKET_ERROR) {
            const int error = WSAGetLastError();
            if (error != WSAEWOULDBLOCK)
                return Fail(error, kSendSource);
            Trace("WARNING: Send buffer full, waiting...");
            return;
        }
        Raise(
            [&](SocketEvents& owner) { owner.OnSendProgress(sent, EventCount(sending_.Bytes())); });
        if (!StillOn(connection) || !IsUsable())
            return;
    }
    Raise([](SocketEvents& owner) { owner.OnSendComplete(); });
}

} // namespace vesk
