#pragma once

#include "base/Failure.h"
#include "net/MessagePump.h"
#include "net/clsSocketMaster.h"

#include <doctest/doctest.h>

#include <string>

namespace vesk::test {

/// A web server on this machine's port 80 that sends the first half of a file and the rest when it
/// is told to. It works whenever it is let to, on the test's own thread.
class HalfServer : SocketEvents {
public:
    explicit HalfServer(std::string body) : body_(std::move(body)) {
        try {
            listener_.Bind(80, "127.0.0.1");
            listener_.Listen();
        } catch (const Failure&) { // this user may not use the port
        }
    }

    [[nodiscard]] bool IsReady() const { return listener_.State() == SocketState::sckListening; }

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
    void OnConnectionRequest(std::uintptr_t request) override { client_.Accept(request); }
    void OnDataArrival(std::int32_t) override {
        client_.SendData("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body_.size()) +
                         "\r\n\r\n" + body_.substr(0, body_.size() / 2));
    }
    void OnSendComplete() override { isSent_ = true; }

    std::string body_;
    clsSocketMaster listener_{*this};
    clsSocketMaster client_{*this};
    bool isSent_ = false;
};

} // namespace vesk::test
