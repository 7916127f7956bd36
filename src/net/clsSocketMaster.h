#pragma once

#include "net/modSocketValue.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace vesk {

/// What a socket is doing; the numbers are those that are reported.
enum class SocketState : std::int16_t {
    sckClosed = 0,
    sckOpen = 1,
    sckListening = 2,
    sckConnectionPending = 3,
    sckResolvingHost = 4,
    sckHostResolved = 5,
    sckConnecting = 6,
    sckConnected = 7,
    sckClosing = 8,
    sckError = 9,
};

/// What a socket speaks: a stream of bytes, or datagrams.
enum class SocketProtocol : std::int16_t { TCP = 0, UDP = 1 };

/// An error of the system, as the owner of a socket receives it.
struct SocketErrorInfo {
    std::int32_t number = 0;      ///< The system's code.
    std::string description;      ///< Its text.
    std::int32_t scode = 0;       ///< Always 0.
    std::string source;           ///< Class and procedure that met it.
    std::string helpFile;         ///< Always empty.
    std::int32_t helpContext = 0; ///< Always 0.
};

/// The owner of a socket object overrides the events that it wants. Inside every event it may
/// close, reconnect or destroy the object.
class SocketEvents {
public:
    virtual ~SocketEvents() = default;

    /// The other end closed the connection; everything it sent has been reported before.
    virtual void OnCloseSck() {}

    /// The connection that Connect asked for is there.
    virtual void OnConnect() {}

    /// A connection came in. Unless it is claimed with Accept inside this event, it is closed.
    virtual void OnConnectionRequest(std::uintptr_t requestID);

    /// @param bytesTotal bytes that came just now; for UDP the size of the waiting datagram
    virtual void OnDataArrival(std::int32_t bytesTotal);

    /// @param cancelDisplay arrives true; set to false, the description is shown in a message box
    virtual void OnError(const SocketErrorInfo& error, bool& cancelDisplay);

    /// Everything that was given to SendData is with the system.
    virtual void OnSendComplete() {}

    /// The system took bytes. @param bytesRemaining bytes that wait to be sent
    virtual void OnSendProgress(std::int32_t bytesSent, std::int32_t bytesRemaining);
};

class clsSocketCore;

/// A TCP or UDP socket that works by events: every method returns at once, the outcome arrives
/// through the message loop of the thread. Not copyable; the owner must outlive it.
///
/// Methods throw a Failure with the source "clsSocketMaster.<method>": 40006 without the connection
/// they need, 40014 for a bad argument, 40018 for a kind of value that does not fit, 40020 at the
/// wrong state, the system's code when the system refuses.
class clsSocketMaster {
public:
    /// The first object starts the socket service, the last one ends it. @throws Failure
    explicit clsSocketMaster(SocketEvents& owner);
    clsSocketMaster(const clsSocketMaster&) = delete;
    clsSocketMaster& operator=(const clsSocketMaster&) = delete;
    /// Closes the socket; no event follows.
    ~clsSocketMaster();

    /// Name or address of the other end.
    [[nodiscard]] const std::string& RemoteHost() const;
    void SetRemoteHost(const std::string& host);

    /// Port of the other end.
    [[nodiscard]] std::int32_t RemotePort() const;
    /// @throws Failure 40014 outside 0..65535
    void SetRemotePort(std::int32_t port);

    /// Dotted address of the other end; empty before it is known.
    [[nodiscard]] std::string RemoteHostIP() const;

    /// The port in use, or the one wished for (0: any) while there is no socket.
    [[nodiscard]] std::int32_t LocalPort() const;
    /// @throws Failure 40014 outside 0..65535, 40020 unless closed
    void SetLocalPort(std::int32_t port);

    /// What the socket is doing.
    [[nodiscard]] SocketState State() const;

    /// The machine's name. @throws Failure
    [[nodiscard]] std::string LocalHostName() const;

    /// The machine's first address.
    [[nodiscard]] std::string LocalIP() const;

    /// Bytes waiting to be taken; for UDP the size of the next datagram.
    [[nodiscard]] std::int32_t BytesReceived() const;

    /// The system's socket; all bits set while there is none.
    [[nodiscard]] std::uintptr_t SocketHandle() const;

    /// TCP unless another one was set.
    [[nodiscard]] SocketProtocol Protocol() const;
    /// @throws Failure 40020 unless closed
    void SetProtocol(SocketProtocol protocol);

    /// Closes the socket and forgets what waits to be sent or taken. No event follows.
    void CloseSck();

    /// Connects to a host (text) and port (number or text); either may be left out where the
    /// property holds it. Outcome: OnConnect or OnError. A UDP socket is not connected but opened
    /// for that other end (state sckOpen, no event).
    void Connect(const SocketValue& remoteHost = {}, const SocketValue& remotePort = {});

    /// Binds to a local port (0: any) and address (all when not given). UDP is then open.
    void Bind(const SocketValue& localPort = {}, const SocketValue& localIP = {});

    /// Listens at the local port, bound before or now.
    void Listen();

    /// Takes over a connection announced by another object's OnConnectionRequest.
    void Accept(std::uintptr_t requestID);

    /// Sends a text or byte array. What the system does not take at once follows when it can.
    /// A UDP socket sends one datagram; a host name that was not looked up yet is looked up here,
    /// which can take its time.
    void SendData(const SocketValue& data);

    /// Takes what was received, as the kind asked for. @param maxLen greatest number of bytes
    void GetData(SocketValue& data, VarType type = VarType::String, const SocketValue& maxLen = {});

    /// The same, leaving the bytes where they are.
    void PeekData(SocketValue& data, VarType type = VarType::String,
                  const SocketValue& maxLen = {});

    /// What a TCP socket has received, in place and at any state; valid until the next call or
    /// event of this object. DropReceived removes bytes at its front.
    [[nodiscard]] std::string_view Received() const;
    void DropReceived(std::size_t size);

private:
    /// Does the work and stays alive until its last notification is handled, whatever an event
    /// handler does to this object.
    std::shared_ptr<clsSocketCore> core_;
};

} // namespace vesk
