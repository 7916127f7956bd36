#include "net/SocketCore.h"

#include "base/RunTimeError.h"
#include "base/Trace.h"
#include "net/modSocketAddress.h"
#include "net/modSocketErrors.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <vector>

/// What happens on an open socket: sending, receiving, notifications.
namespace vesk {

namespace {

/// No datagram is larger.
constexpr std::size_t kDatagramRoom = 65536;

constexpr const char* kNotificationSource = "clsSocketMaster.PostSocket";
constexpr const char* kSendSource = "clsSocketMaster.SendBufferedData";

std::string EventName(int event) {
    switch (event) {
    case FD_READ:
        return "FD_READ";
    case FD_WRITE:
        return "FD_WRITE";
    case FD_ACCEPT:
        return "FD_ACCEPT";
    case FD_CONNECT:
        return "FD_CONNECT";
    case FD_CLOSE:
        return "FD_CLOSE";
    default:
        return std::to_string(event);
    }
}

std::int32_t Count(std::size_t size) {
    constexpr std::size_t kLargest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(size, kLargest));
}

int Length(std::size_t size) {
    return static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
}

/// The next datagram, or nothing while none waits; -1 with the code in WSAGetLastError.
int ReadDatagram(SOCKET socket, std::span<char> room, bool remove, sockaddr_in& from) {
    int size = sizeof from;
    return recvfrom(socket, room.data(), Length(room.size()), remove ? 0 : MSG_PEEK,
                    reinterpret_cast<sockaddr*>(&from), &size);
}

/// An accepted connection until it is claimed. What nobody claims is closed.
class UnclaimedConnection {
public:
    UnclaimedConnection(SOCKET socket, const std::weak_ptr<SocketTarget>& listener)
        : socket_(socket) {
        RegisterSocket(socket, listener, false);
        AddAccepted(socket);
    }
    UnclaimedConnection(const UnclaimedConnection&) = delete;
    UnclaimedConnection& operator=(const UnclaimedConnection&) = delete;
    ~UnclaimedConnection() {
        if (!TakeAccepted(socket_.Get())) {
            static_cast<void>(socket_.Release());
            return;
        }
        UnregisterSocket(socket_.Get());
        Trace("OK Closed accepted socket: " + std::to_string(socket_.Get()));
    }

private:
    SocketOwner socket_;
};

/// Marks a connection as the one being sent on, until the end of a scope.
class SendingMark {
public:
    SendingMark(unsigned& current, unsigned connection)
        : current_(current), previous_(std::exchange(current, connection)) {}
    SendingMark(const SendingMark&) = delete;
    SendingMark& operator=(const SendingMark&) = delete;
    ~SendingMark() { current_ = previous_; }

private:
    unsigned& current_;
    unsigned previous_;
};

} // namespace

void SocketCore::OnNotification(int event, int error) {
    if (error != 0)
        return Fail(error, kNotificationSource);
    const bool connected = state_ == SocketState::sckConnected;
    const bool open = protocol == SocketProtocol::UDP && state_ == SocketState::sckOpen;
    if (event == FD_READ && connected)
        ReceiveOnce();
    else if (event == FD_READ && open)
        OnReadableDatagram();
    else if (event == FD_WRITE && CanSend() && Unsent() > 0)
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

void SocketCore::OnConnected() {
    ReadLocalPort();
    peerAddress_ = remoteAddress_;
    SetState(SocketState::sckConnected);
    Raise([](SocketEvents& owner) { owner.OnConnect(); });
}

void SocketCore::OnAcceptable() {
    const SOCKET accepted = accept(socket_.Get(), nullptr, nullptr);
    if (accepted == INVALID_SOCKET) {
        const int error = WSAGetLastError();
        if (error != WSAEWOULDBLOCK) // who called has hung up again
            Fail(error, kNotificationSource);
        return;
    }
    const UnclaimedConnection connection(accepted, weak_from_this());
    Raise([&](SocketEvents& owner) { owner.OnConnectionRequest(accepted); });
}

// Receiving

/// Reads once into the receive buffer and reports what came.
/// @return true when something came and the connection is still there to go on with
bool SocketCore::ReceiveOnce() {
    int count = 0;
    try {
        count = recv(socket_.Get(), received_.Room(offeredSize_).data(), Length(offeredSize_), 0);
    } catch (const std::bad_alloc&) {
        FailWith(kOutOfMemory, kOutOfMemoryText, kNotificationSource);
        return false;
    }
    if (count == SOCKET_ERROR) {
        const int error = WSAGetLastError();
        if (error != WSAEWOULDBLOCK)
            Fail(error, kNotificationSource);
        return false;
    }
    if (count == 0)
        return false;
    received_.Commit(static_cast<std::size_t>(count));
    constexpr std::size_t kGrowth = 8;
    if (static_cast<std::size_t>(count) == offeredSize_)
        offeredSize_ = std::min(offeredSize_ * kGrowth, receiveSize_);
    const unsigned connection = connection_;
    Raise([&](SocketEvents& owner) { owner.OnDataArrival(count); });
    return StillOn(connection) && state_ == SocketState::sckConnected;
}

void SocketCore::OnClosed() {
    // The notice can overtake the last bytes: they are still in the system's buffer.
    const unsigned connection = connection_;
    while (ReceiveOnce()) {
    }
    if (!StillOn(connection) || state_ != SocketState::sckConnected)
        return;
    SetState(SocketState::sckClosing);
    Raise([](SocketEvents& owner) { owner.OnCloseSck(); });
}

void SocketCore::OnReadableDatagram() {
    // Looking at a datagram makes the system notify again as long as it waits.
    if (datagramAnnounced_)
        return;
    const int size = NextDatagramSize();
    if (size >= 0) {
        datagramAnnounced_ = true;
        Raise([&](SocketEvents& owner) { owner.OnDataArrival(size); });
        return;
    }
    const int error = WSAGetLastError();
    if (error != WSAEWOULDBLOCK)
        Fail(error, kNotificationSource);
}

/// Size of the datagram that waits; -1 with the code in WSAGetLastError when there is none.
int SocketCore::NextDatagramSize() const {
    std::vector<char> room(kDatagramRoom);
    sockaddr_in from{};
    return ReadDatagram(socket_.Get(), room, false, from);
}

std::size_t SocketCore::BytesReceived() const {
    if (protocol == SocketProtocol::TCP)
        return received_.Size();
    const int size = state_ == SocketState::sckOpen ? NextDatagramSize() : 0;
    return static_cast<std::size_t>(std::max(size, 0));
}

SocketValue SocketCore::TakeData(VarType type, const SocketValue& maxLen, bool remove,
                                 const char* method) {
    const bool stream = protocol == SocketProtocol::TCP;
    if (state_ != (stream ? SocketState::sckConnected : SocketState::sckOpen))
        ThrowSocketMisuse(SocketMisuse::WrongState, method);
    const std::size_t limit = LengthLimitOf(maxLen, method);
    if (!stream)
        return TakeDatagram(type, limit, remove, method);
    const std::string_view bytes = received_.Bytes().substr(0, limit);
    const std::size_t taken = BytesTaken(bytes.size(), type, method);
    SocketValue value = ValueOfBytes(bytes.substr(0, taken), type);
    if (remove)
        received_.Drop(taken);
    return value;
}

SocketValue SocketCore::TakeDatagram(VarType type, std::size_t limit, bool remove,
                                     const char* method) {
    std::vector<char> room(kDatagramRoom);
    sockaddr_in from{};
    const int count = ReadDatagram(socket_.Get(), room, false, from);
    if (count < 0 && WSAGetLastError() != WSAEWOULDBLOCK)
        ThrowSocketError(WSAGetLastError(), std::string("clsSocketMaster.") + method);
    const std::string_view bytes(room.data(), static_cast<std::size_t>(std::max(count, 0)));
    const std::size_t taken = BytesTaken(std::min(bytes.size(), limit), type, method);
    SocketValue value = ValueOfBytes(bytes.substr(0, taken), type);
    if (count >= 0 && remove) {
        // A datagram is taken whole: what the caller did not ask for is gone.
        ReadDatagram(socket_.Get(), room, true, from);
        datagramAnnounced_ = false;
        peerAddress_ = from.sin_addr.s_addr;
        remotePort = ntohs(from.sin_port);
    }
    return value;
}

// Sending

bool SocketCore::CanSend() const {
    return state_ ==
           (protocol == SocketProtocol::TCP ? SocketState::sckConnected : SocketState::sckOpen);
}

std::size_t SocketCore::Unsent() const {
    std::size_t size = sending_.Size();
    for (const Datagram& datagram : datagrams_)
        size += datagram.bytes.size();
    return size;
}

void SocketCore::SendData(const SocketValue& data) {
    const bool stream = protocol == SocketProtocol::TCP;
    const bool openNow = !stream && state_ == SocketState::sckClosed;
    if (!CanSend() && !openNow)
        ThrowSocketMisuse(SocketMisuse::WrongState, "SendData");
    const std::string_view bytes = BytesOf(data, "SendData");
    if (openNow)
        Bind({}, {});
    if (stream)
        sending_.Append(bytes);
    else
        datagrams_.push_back({DatagramTarget(), remotePort, std::string(bytes)});
    SendBuffered();
}

/// Address of the remote host, looked up here unless that was done before.
std::uint32_t SocketCore::DatagramTarget() const {
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

/// Hands the system the next piece, a datagram whole. @return bytes taken, or SOCKET_ERROR
int SocketCore::SendPiece() {
    if (datagrams_.empty()) {
        const std::string_view piece = sending_.Bytes().substr(0, sendSize_);
        const int sent = send(socket_.Get(), piece.data(), Length(piece.size()), 0);
        if (sent != SOCKET_ERROR)
            sending_.Drop(static_cast<std::size_t>(sent));
        return sent;
    }
    const Datagram& next = datagrams_.front();
    const sockaddr_in to = EndPoint(next.address, next.port);
    int sent = SOCKET_ERROR;
    if (next.bytes.size() > largestDatagram_)
        WSASetLastError(WSAEMSGSIZE);
    else
        sent = sendto(socket_.Get(), next.bytes.data(), Length(next.bytes.size()), 0,
                      reinterpret_cast<const sockaddr*>(&to), sizeof to);
    if (sent != SOCKET_ERROR || WSAGetLastError() != WSAEWOULDBLOCK)
        datagrams_.pop_front();
    return sent;
}

void SocketCore::SendBuffered() {
    if (sendingConnection_ == connection_)
        return; // called from an event of the loop below, which goes on with the new bytes
    const unsigned connection = connection_;
    const SendingMark mark(sendingConnection_, connection);
    while (!sending_.Empty() || !datagrams_.empty()) {
        const int sent = SendPiece();
        if (sent == SOCKET_ERROR) {
            const int error = WSAGetLastError();
            if (error != WSAEWOULDBLOCK)
                return Fail(error, kSendSource);
            Trace("WARNING: Send buffer full, waiting...");
            return;
        }
        Raise([&](SocketEvents& owner) { owner.OnSendProgress(sent, Count(Unsent())); });
        if (!StillOn(connection) || !CanSend())
            return;
    }
    Raise([](SocketEvents& owner) { owner.OnSendComplete(); });
}

} // namespace vesk
