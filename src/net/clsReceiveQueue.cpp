#include "net/clsReceiveQueue.h"

#include "net/modSocketErrors.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

void clsReceiveQueue::Fit(SOCKET socket) {
    sizes_ = FitReceiving(socket);
    offered_ = sizes_.first;
}

void clsReceiveQueue::Clear() {
    stream_.Clear();
    datagramAnnounced_ = false;
}

int clsReceiveQueue::ReadOnce(SOCKET socket) {
    const int count = ReceiveBytes(socket, stream_.Room(offered_).first(offered_));
    if (count <= 0)
        return count;
    const auto size = static_cast<std::size_t>(count);
    stream_.Commit(size);
    constexpr std::size_t kGrowth = 8;
    if (size == offered_)
        offered_ = std::min(offered_ * kGrowth, sizes_.most);
    return count;
}

SocketValue clsReceiveQueue::TakeBytes(VarType type, std::size_t limit, bool remove,
                                       const char* method) {
    const std::string_view bytes = stream_.Bytes().substr(0, limit);
    const std::size_t taken = BytesTaken(bytes.size(), type, method);
    SocketValue value = ValueOfBytes(bytes.substr(0, taken), type);
    if (remove)
        stream_.Drop(taken);
    return value;
}

std::optional<int> clsReceiveQueue::AnnounceDatagram(SOCKET socket) {
    // Looking at a datagram makes the system notify again as long as it waits.
    WSASetLastError(WSAEWOULDBLOCK);
    const int size = datagramAnnounced_ ? -1 : NextDatagramSize(socket);
    if (size < 0)
        return std::nullopt;
    datagramAnnounced_ = true;
    return size;
}

int clsReceiveQueue::NextDatagramSize(SOCKET socket) {
    std::vector<char> room(kDatagramRoom);
    sockaddr_in from{};
    return ReceiveDatagram(socket, room, false, from);
}

SocketValue clsReceiveQueue::TakeDatagram(SOCKET socket, VarType type, std::size_t limit,
                                          bool remove, const char* method,
                                          std::optional<sockaddr_in>& sender) {
    std::vector<char> room(kDatagramRoom);
    sockaddr_in from{};
    const int count = ReceiveDatagram(socket, room, false, from);
    if (count < 0 && WSAGetLastError() != WSAEWOULDBLOCK)
        ThrowSocketError(WSAGetLastError(), std::string("clsSocketMaster.") + method);
    const std::string_view bytes(room.data(), static_cast<std::size_t>(std::max(count, 0)));
    const std::size_t taken = BytesTaken(std::min(bytes.size(), limit), type, method);
    SocketValue value = ValueOfBytes(bytes.substr(0, taken), type);
    if (count >= 0 && remove) {
        ReceiveDatagram(socket, room, true, from);
        datagramAnnounced_ = false;
        sender = from;
    }
    return value;
}

} // namespace vesk
