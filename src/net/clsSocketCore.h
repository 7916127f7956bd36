#pragma once

#include "net/modSocketMaster.h"

#include "net/clsByteQueue.h"
#include "net/clsReceiveQueue.h"
#include "net/clsSendQueue.h"
#include "net/clsSocketMaster.h"
#include "net/modSocketHandle.h"
#include "net/modSocketValue.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace vesk {

/// The inside of a clsSocketMaster, see there for what the methods do. It is held by shared
/// pointers so that it outlives every event it raises; after an event it goes on only when
/// the connection is still the same (StillOn).
class clsSocketCore final : public SocketTarget,
                            public std::enable_shared_from_this<clsSocketCore> {
public:
    explicit clsSocketCore(SocketEvents& owner) : owner_(&owner) {}

    /// Closes and falls silent.
    void Detach();

    std::string remoteHost;
    std::uint16_t remotePort = 0;
    std::uint16_t wishedLocalPort = 0;
    SocketProtocol protocol = SocketProtocol::TCP;

    [[nodiscard]] SocketState State() const { return state_; }
    [[nodiscard]] SOCKET Handle() const { return socket_.Get(); }
    [[nodiscard]] std::string RemoteHostIP() const;
    [[nodiscard]] std::uint16_t LocalPort() const;
    [[nodiscard]] std::size_t BytesReceived() const;
    [[nodiscard]] clsByteQueue& ReceivedQueue() { return received_.Stream(); }

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
    template <class Event>
    void Raise(Event&& event) {
        if (owner_ != nullptr)
            event(*owner_);
    }

    /// True while the connection that had this number is the current one.
    [[nodiscard]] bool StillOn(unsigned connection) const { return connection == connection_; }

    /// Connected, or open for datagrams.
    [[nodiscard]] bool IsUsable() const;
    void SetState(SocketState state);
    void Fail(int code, const char* source);
    void FailWith(int code, const std::string& text, const char* source);

    void CreateSocket(const char* source);
    void AskForNotifications();
    [[nodiscard]] int BindTo(std::uint16_t port, std::uint32_t address);
    void StartResolving();
    void GoOnWithAddress(std::uint32_t address);

    bool ReceiveOnce();
    void OnReadableDatagram();
    void FailUnlessEmpty();
    void OnAcceptable();
    void OnConnected();
    void OnClosed();

    [[nodiscard]] std::uint32_t DatagramTarget() const;
    void SendBuffered();

    SocketEvents* owner_;
    SocketState state_ = SocketState::sckClosed;
    SocketOwner socket_;
    std::uint16_t localPort_ = 0; ///< What it was bound to; 0 where the system chose with Connect.
    std::uint32_t remoteAddress_ = INADDR_NONE; ///< What the host named last was looked up as.
    std::string resolvedHost_;                  ///< The host that it belongs to.
    std::uint32_t peerAddress_ = INADDR_NONE;   ///< Other end, or sender of the last datagram.
    std::uintptr_t lookup_ = 0;
    unsigned connection_ = 0;          ///< Number of the current connection; closing ends it.
    unsigned sendingConnection_ = ~0U; ///< The connection whose buffer is being sent just now.
    clsReceiveQueue received_;
    clsSendQueue sending_;
};

} // namespace vesk
