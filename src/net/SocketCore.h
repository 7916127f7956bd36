#pragma once

#include "net/modSocketMaster.h"

#include "net/ByteQueue.h"
#include "net/clsSocketMaster.h"

#include <deque>

namespace vesk {

/// The inside of a clsSocketMaster, see there for what the methods do. It is held by shared
/// pointers so that it outlives every event it raises; after an event it goes on only when
/// the connection is still the same (StillOn).
class SocketCore final : public SocketTarget, public std::enable_shared_from_this<SocketCore> {
public:
    explicit SocketCore(SocketEvents& owner) : owner_(&owner) {}

    /// Closes and falls silent.
    void Detach();

    std::string remoteHost;
    std::uint16_t remotePort = 0;
    std::uint16_t wishedLocalPort = 0;
    SocketProtocol protocol = SocketProtocol::TCP;

    [[nodiscard]] SocketState State() const { return state_; }
    [[nodiscard]] SOCKET Handle() const { return socket_.Get(); }
    [[nodiscard]] std::string RemoteHostIP() const;
    [[nodiscard]] std::uint16_t LocalPort() const { return socket_ ? localPort_ : wishedLocalPort; }
    [[nodiscard]] std::size_t BytesReceived() const;
    [[nodiscard]] ByteQueue& ReceivedQueue() { return received_; }

    /// @throws Failure 40020 unless closed
    void RequireClosed(const char* method) const;

    void Close();
    void Connect(const SocketValue& host, const SocketValue& port);
    void Bind(const SocketValue& port, const SocketValue& address);
    void Listen();
    void Accept(SOCKET request);
    void SendData(const SocketValue& data);
    SocketValue TakeData(VarType type, const SocketValue& maxLen, bool remove, const char* method);

    void OnNotification(int event, int error) override;
    void OnLookupDone(std::uint32_t address, int error) override;

private:
    struct Datagram {
        std::uint32_t address;
        std::uint16_t port;
        std::string bytes;
    };

    template <class Event>
    void Raise(Event&& event) {
        if (owner_ != nullptr)
            event(*owner_);
    }

    /// True while the connection that had this number is the current one.
    [[nodiscard]] bool StillOn(unsigned connection) const { return connection == connection_; }

    void SetState(SocketState state);
    void Fail(int code, const char* source);
    void FailWith(int code, const std::string& text, const char* source);

    void CreateSocket(const char* source);
    void ReadSystemSizes();
    [[nodiscard]] int BindTo(std::uint16_t port, std::uint32_t address);
    void ReadLocalPort();
    void StartResolving();
    void GoOnWithAddress(std::uint32_t address);

    bool ReceiveOnce();
    void OnReadableDatagram();
    [[nodiscard]] int NextDatagramSize() const;
    void OnAcceptable();
    void OnConnected();
    void OnClosed();

    [[nodiscard]] std::uint32_t DatagramTarget() const;
    [[nodiscard]] bool CanSend() const;
    [[nodiscard]] std::size_t Unsent() const;
    int SendPiece();
    void SendBuffered();
    SocketValue TakeDatagram(VarType type, std::size_t limit, bool remove, const char* method);

    SocketEvents* owner_;
    SocketState state_ = SocketState::sckClosed;
    SocketOwner socket_;
    std::uint16_t localPort_ = 0;
    std::uint32_t remoteAddress_ = INADDR_NONE; ///< What the host named last was looked up as.
    std::string resolvedHost_;                  ///< The host that it belongs to.
    std::uint32_t peerAddress_ = INADDR_NONE;   ///< Other end, or sender of the last datagram.
    std::uintptr_t lookup_ = 0;
    unsigned connection_ = 0;          ///< Number of the current connection; closing ends it.
    unsigned sendingConnection_ = ~0U; ///< The connection whose buffer is being sent just now.
    std::size_t sendSize_ = 0;
    std::size_t receiveSize_ = 0;    ///< The most that one read takes.
    std::size_t offeredSize_ = 0;    ///< What the next one takes.
    bool datagramAnnounced_ = false; ///< Its event was raised and it was not taken yet.
    std::size_t largestDatagram_ = 0;
    ByteQueue received_;
    ByteQueue sending_;
    std::deque<Datagram> datagrams_;
};

} // namespace vesk
