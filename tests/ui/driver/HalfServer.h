#pragma once

#include "base/Failure.h"
#include "net/MessagePump.h"
#include "net/clsSocketMaster.h"

#include <doctest/doctest.h>

#include <string>

namespace vesk::test {

/// A web server on port 80 of one of this machine's addresses that has no "/none", and sends the
/// first half of any other file and the rest when it is told to. It works whenever it is let to, on
/// the test's own thread.
class HalfServer : SocketEvents {
public:
    explicit HalfServer(std::string body) : body_(std::move(body)) {
        for (int i = 1; i < 70 && !IsReady(); ++i) {
            try {
                host_ = "127.0.0." + std::to_string(i);
                listener_.Bind(80, host_);
                listener_.Listen();
            } catch (const Failure&) { // it is taken there, or this user may not use the port
                listener_.CloseSck();
            }
        }
    }

    [[nodiscard]] bool IsReady() const { return listener_.State() == SocketState::sckListening; }

    [[nodiscard]] const std::string& Host() const { return host_; }
    [[nodiscard]] const std::string& Body() const { return body_; }

    /// Answers what has come in with the header and half of the file.
    static void Serve() { PumpFor(5); }

    /// Sends the rest to the one who waits for it.
    void SendRest() {
        isSent_ = false;
        client_.SendData(body_.substr(body_.size() / 2));
        CHECK(PumpUntil([&] { return isSent_; }));
        HangUp();
    }

    void HangUp() { client_.CloseSck(); }

private:
    void OnConnectionRequest(std::uintptr_t request) override {
        HangUp();
        client_.Accept(request);
    }
    void OnDataArrival(std::int32_t) override {
        SocketValue request;
        client_.GetData(request);
        if (std::get<std::string>(request).starts_with("GET /none"))
            return client_.SendData(std::string("HTTP/1.1 404 Not Found\r\n\r\n"));
        client_.SendData("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body_.size()) +
                         "\r\n\r\n" + body_.substr(0, body_.size() / 2));
    }
    void OnSendComplete() override { isSent_ = true; }

    std::string host_;
    std::string body_;
    clsSocketMaster listener_{*this};
    clsSocketMaster client_{*this};
    bool isSent_ = false;
};

} // namespace vesk::test
