#include "net/clsSendQueue.h"

#include "net/modSocketAddress.h"

#include <cstddef>
#include <cstdint>

namespace vesk {

void clsSendQueue::AppendDatagram(std::uint32_t address, std::uint16_t port,
                                  std::string_view bytes) {
    datagrams_.push_back({address, port, std::string(bytes)});
}

void clsSendQueue::Clear() {
    stream_.Clear();
    datagrams_.clear();
    sendSize_ = 0;
}

std::size_t clsSendQueue::Bytes() const {
    std::size_t size = stream_.Size();
    for (const Datagram& datagram : datagrams_)
        size += datagram.bytes.size();
    return size;
}

int clsSendQueue::SendPiece(SOCKET socket) {
    if (!datagrams_.empty())
        return SendDatagram(socket);
    const std::string_view piece = stream_.Bytes().substr(0, NextPieceSize(socket));
    const int sent = send(socket, piece.data(), static_cast<int>(piece.size()), 0);
    if (sent != SOCKET_ERROR)
        stream_.Drop(static_cast<std::size_t>(sent));
    return sent;
}

std::size_t clsSendQueue::NextPieceSize(SOCKET socket) {
    if (stream_.Size() <= kLeastSendSize)
        return stream_.Size();
    if (sendSize_ == 0)
        sendSize_ = SendSize(socket);
    return sendSize_;
}

int clsSendQueue::SendDatagram(SOCKET socket) {
    const Datagram& next = datagrams_.front();
    const sockaddr_in to = EndPoint(next.address, next.port);
    int sent = SOCKET_ERROR;
    if (next.bytes.size() > DatagramSize(socket))
        WSASetLastError(WSAEMSGSIZE);
    else
        sent = sendto(socket, next.bytes.data(), static_cast<int>(next.bytes.size()), 0,
                      reinterpret_cast<const sockaddr*>(&to), sizeof to);
    if (sent != SOCKET_ERROR || WSAGetLastError() != WSAEWOULDBLOCK)
        datagrams_.pop_front();
    return sent;
}

} // namespace vesk
