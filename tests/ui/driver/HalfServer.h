#pragma once

#include <winsock2.h>

#include <windows.h>

#include <array>
#include <string>
#include <vector>

namespace vesk::test {

/// A web server on this machine's port 80 that sends the first half of a file and the rest when it
/// is told to. It works whenever it is asked to, on the test's own thread.
class HalfServer {
public:
    explicit HalfServer(std::string body) : body_(std::move(body)) {
        WSADATA data{};
        WSAStartup(MAKEWORD(2, 2), &data);
        listener_ = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(80);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const char reuse = 1;
        setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse);
        ready_ =
            bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
            listen(listener_, 4) == 0;
        u_long nonBlocking = 1;
        ioctlsocket(listener_, FIONBIO, &nonBlocking);
    }
    HalfServer(const HalfServer&) = delete;
    HalfServer& operator=(const HalfServer&) = delete;
    ~HalfServer() {
        HangUp();
        closesocket(listener_);
        WSACleanup();
    }

    /// False where this user may not use the port.
    [[nodiscard]] bool IsReady() const { return ready_; }

    [[nodiscard]] const std::string& Body() const { return body_; }

    /// Answers a request that has come in with the header and half of the file.
    void Serve() {
        const SOCKET client = accept(listener_, nullptr, nullptr);
        if (client == INVALID_SOCKET)
            return;
        u_long blocking = 0;
        ioctlsocket(client, FIONBIO, &blocking);
        std::array<char, 4096> request{};
        recv(client, request.data(), static_cast<int>(request.size()), 0);
        Send(client, "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body_.size()) +
                         "\r\n\r\n" + body_.substr(0, body_.size() / 2));
        clients_.push_back(client);
    }

    /// Sends the rest to everybody who waits for it.
    void SendRest() {
        for (const SOCKET client : clients_)
            Send(client, body_.substr(body_.size() / 2));
        HangUp();
    }

    /// Hangs up on everybody who waits for it.
    void HangUp() {
        for (const SOCKET client : clients_)
            closesocket(client);
        clients_.clear();
    }

private:
    static void Send(SOCKET client, const std::string& text) {
        send(client, text.data(), static_cast<int>(text.size()), 0);
    }

    std::string body_;
    SOCKET listener_ = INVALID_SOCKET;
    std::vector<SOCKET> clients_;
    bool ready_ = false;
};

} // namespace vesk::test
