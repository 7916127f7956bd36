#include "net/clsSocketCore.h"

#include "net/modSocketAddress.h"
#include "net/modSocketErrors.h"
#include "net/modSocketHandle.h"
#include "net/modSocketMaster.h"
#include "net/modSocketValue.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <string_view>

namespace vesk {

void SocketEvents::OnConnectionRequest(std::uintptr_t) {}
void SocketEvents::OnDataArrival(std::int32_t) {}
void SocketEvents::OnError(const SocketErrorInfo&, bool&) {}
void SocketEvents::OnSendProgress(std::int32_t, std::int32_t) {}

clsSocketMaster::clsSocketMaster(SocketEvents& owner)
    : core_(std::make_shared<clsSocketCore>(owner)) {
    InitiateProcesses();
}

clsSocketMaster::~clsSocketMaster() {
    core_->Detach();
    FinalizeProcesses();
}

const std::string& clsSocketMaster::RemoteHost() const {
    return core_->remoteHost;
}

void clsSocketMaster::SetRemoteHost(const std::string& host) {
    core_->remoteHost = host;
}

std::int32_t clsSocketMaster::RemotePort() const {
    return core_->remotePort;
}

void clsSocketMaster::SetRemotePort(std::int32_t port) {
    core_->remotePort = PortOf(port, "RemotePort");
}

std::string clsSocketMaster::RemoteHostIP() const {
    return core_->RemoteHostIP();
}

std::int32_t clsSocketMaster::LocalPort() const {
    return core_->LocalPort();
}

void clsSocketMaster::SetLocalPort(std::int32_t port) {
    core_->RequireClosed("LocalPort");
    core_->wishedLocalPort = PortOf(port, "LocalPort");
}

SocketState clsSocketMaster::State() const {
    return core_->State();
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): needs the service started
std::string clsSocketMaster::LocalHostName() const {
    std::array<char, 256> name{};
    if (gethostname(name.data(), static_cast<int>(name.size() - 1)) != 0)
        ThrowSocketError(WSAGetLastError(), "clsSocketMaster.LocalHostName");
    return name.data();
}

std::string clsSocketMaster::LocalIP() const {
    const std::uint32_t address = FirstAddressOf(gethostbyname(LocalHostName().c_str()));
    if (address == INADDR_NONE)
        ThrowSocketError(WSAGetLastError(), "clsSocketMaster.LocalIP");
    return AddressText(address);
}

std::int32_t clsSocketMaster::BytesReceived() const {
    return EventCount(core_->BytesReceived());
}

std::uintptr_t clsSocketMaster::SocketHandle() const {
    return core_->Handle();
}

SocketProtocol clsSocketMaster::Protocol() const {
    return core_->protocol;
}

void clsSocketMaster::SetProtocol(SocketProtocol protocol) {
    core_->RequireClosed("Protocol");
    core_->protocol = protocol;
}

// What can raise an event holds the core itself: the handler may destroy this object.

void clsSocketMaster::CloseSck() {
    core_->Close();
}

void clsSocketMaster::Connect(const SocketValue& remoteHost, const SocketValue& remotePort) {
    const auto core = core_;
    core->Connect(remoteHost, remotePort);
}

void clsSocketMaster::Bind(const SocketValue& localPort, const SocketValue& localIP) {
    core_->Bind(localPort, localIP);
}

void clsSocketMaster::Listen() {
    core_->Listen();
}

void clsSocketMaster::Accept(std::uintptr_t requestID) {
    core_->Accept(requestID);
}

void clsSocketMaster::SendData(const SocketValue& data) {
    const auto core = core_;
    try {
        core->SendData(data);
    } catch (const std::bad_alloc&) {
        ThrowOutOfMemory("clsSocketMaster.SendData");
    }
}

void clsSocketMaster::GetData(SocketValue& data, VarType type, const SocketValue& maxLen) {
    data = core_->TakeData(type, maxLen, true, "GetData");
}

void clsSocketMaster::PeekData(SocketValue& data, VarType type, const SocketValue& maxLen) {
    data = core_->TakeData(type, maxLen, false, "PeekData");
}

std::string_view clsSocketMaster::Received() const {
    return core_->ReceivedQueue().Bytes();
}

void clsSocketMaster::DropReceived(std::size_t size) {
    core_->ReceivedQueue().Drop(size);
}

} // namespace vesk
