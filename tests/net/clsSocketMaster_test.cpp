#include "net/clsSocketMaster.h"

#include "ExpectedText.h"
#include "net/MessagePump.h"
#include "net/clsReceiveQueue.h"
#include "net/modSocketHandle.h"
#include "net/modSocketMaster.h"

#include <vector>

using namespace vesk;
using namespace vesk::test;

namespace {

const std::string kLocal = "127.0.0.1";

/// A socket object whose events are counted; each can be given something to do.
struct Peer : SocketEvents {
    std::unique_ptr<clsSocketMaster> socket = std::make_unique<clsSocketMaster>(*this);
    std::string log, received;
    SocketErrorInfo error;
    std::int32_t arrived = 0;
    bool takeData = true;
    std::function<void(char event)> react;
    Peer* acceptor = nullptr;

    void Note(char event) {
        log += event;
        if (react)
            react(event);
    }
    void OnConnect() override { Note('c'); }
    void OnCloseSck() override { Note('x'); }
    void OnSendComplete() override { Note('s'); }
    void OnSendProgress(std::int32_t, std::int32_t) override { Note('p'); }
    void OnError(const SocketErrorInfo& info, bool& cancelDisplay) override {
        CHECK(cancelDisplay);
        error = info;
        Note('e');
    }
    void OnConnectionRequest(std::uintptr_t request) override {
        if (acceptor != nullptr)
            acceptor->socket->Accept(request);
        Note('r');
    }
    void OnDataArrival(std::int32_t bytesTotal) override {
        arrived += bytesTotal;
        if (takeData) {
            SocketValue data;
            socket->GetData(data);
            received += std::get<std::string>(data);
        }
        Note('d');
    }
    [[nodiscard]] bool Saw(char event) const { return log.find(event) != std::string::npos; }
    [[nodiscard]] bool Is(SocketState state) const { return socket && socket->State() == state; }
};

/// Two connected peers over the loopback, and the one that listened.
struct Pair {
    Peer listener, server, client;

    Pair() {
        listener.acceptor = &server;
        listener.socket->Listen();
        client.socket->Connect(kLocal, listener.socket->LocalPort());
        REQUIRE(PumpUntil([&] {
            return client.Is(SocketState::sckConnected) && server.Is(SocketState::sckConnected);
        }));
    }
};

struct NothingLeft {
    NothingLeft() = default;
    NothingLeft(const NothingLeft&) = delete;
    NothingLeft& operator=(const NothingLeft&) = delete;
    ~NothingLeft() {
        const SocketCounts counts = CountSockets();
        CHECK(counts.objects + counts.sockets + counts.accepted + counts.lookups == 0);
        CHECK(counts.window == nullptr);
    }
};

/// Other programs that run have such windows, too.
HWND OwnSocketWindow() {
    HWND window = nullptr;
    do {
        window = FindWindowExA(HWND_MESSAGE, window, "STATIC", "SOCKET_WINDOW");
    } while (window && GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId());
    return window;
}

std::string FailureText(const std::function<void()>& action) {
    const Failure failure = FailureIn(action);
    return std::to_string(failure.number) + " " + failure.source + ": " + failure.what();
}

} // namespace

TEST_CASE_FIXTURE(NothingLeft, "connect, talk, look at what waits, close") {
    Pair pair;
    CHECK(pair.client.log == "c");
    CHECK(pair.client.socket->RemoteHostIP() == kLocal);
    CHECK(pair.server.socket->RemotePort() == pair.client.socket->LocalPort());
    CHECK(LocalPortOf(INVALID_SOCKET) == 0);
    CHECK(OwnSocketWindow() == CountSockets().window);

    pair.server.takeData = false;
    pair.client.socket->SendData(SocketBytes{5, 0, 0, 0, 't', 'a', 0xFF, 'l'});
    CHECK(pair.client.log == "cps");
    REQUIRE(PumpUntil([&] { return pair.server.arrived == 8; }));
    clsSocketMaster& socket = *pair.server.socket;
    SocketValue data;
    socket.PeekData(data, VarType::Long);
    CHECK(data == SocketValue(5));
    socket.GetData(data, VarType::ByteArray, 4);
    CHECK(data == SocketValue(SocketBytes{5, 0, 0, 0}));
    socket.PeekData(data, VarType::String, std::string("2"));
    CHECK(data == SocketValue(std::string("ta")));
    CHECK(FailureIn([&] { socket.GetData(data, VarType::String, 0); }).number == 40014);
    CHECK(socket.BytesReceived() == 4);
    socket.PeekData(data);
    CHECK(data == SocketValue(std::string("ta\xFFl")));
    CHECK_FALSE(socket.LocalHostName().empty());

    socket.CloseSck();
    CHECK(socket.BytesReceived() == 0);
    CHECK(pair.server.Is(SocketState::sckClosed));
    REQUIRE(PumpUntil([&] { return pair.client.Saw('x'); }));
    CHECK(pair.client.Is(SocketState::sckClosing));
    CHECK_FALSE(pair.server.Saw('x'));
}

TEST_CASE_FIXTURE(NothingLeft, "what must not be done is refused and changes nothing") {
    CHECK(clsReceiveQueue().ReadOnce(INVALID_SOCKET) == SOCKET_ERROR);
    Pair pair;
    Peer closed;
    SocketValue data;
    clsSocketMaster& busy = *pair.client.socket;
    clsSocketMaster& idle = *closed.socket;
    const std::pair<const char*, std::function<void()>> refused[] = {
        {"connect a connected one", [&] { busy.Connect("x", 1); }},
        {"bind a connected one", [&] { busy.Bind(0); }},
        {"listen on a connected one", [&] { busy.Listen(); }},
        {"accept with a connected one", [&] { busy.Accept(1); }},
        {"another protocol", [&] { busy.SetProtocol(SocketProtocol::UDP); }},
        {"accept what nobody asked for", [&] { idle.Accept(12345); }},
        {"send without a connection", [&] { idle.SendData("x"); }},
        {"receive without a connection", [&] { idle.GetData(data); }},
        {"a port beyond all", [&] { idle.Connect("x", 65536); }},
        {"send a number", [&] { busy.SendData(5); }},
        {"bind to another's address", [&] { idle.Bind(0, "8.8.8.8"); }},
        {"bind to a port in use", [&] { idle.Bind(pair.listener.socket->LocalPort()); }},
    };
    std::string text;
    for (const auto& [name, action] : refused) {
        text += name + (": " + FailureText(action)) + "\n";
        CHECK(busy.State() == SocketState::sckConnected);
        CHECK(idle.State() == SocketState::sckClosed);
        CHECK(idle.RemoteHost().empty());
    }
    idle.SetProtocol(SocketProtocol::UDP);
    text += "listen for datagrams: " + FailureText([&] { idle.Listen(); }) + "\n";
    CheckExpected("socket_refusals", text);
}

TEST_CASE_FIXTURE(NothingLeft, "after a failure to connect the object can be used again") {
    Peer peer;
    for (const std::string& host : {kLocal, std::string(300, 'a'), std::string("a\0b", 3)}) {
        peer.log.clear();
        peer.socket->Connect(host, 1);
        REQUIRE(PumpUntil([&] { return peer.Saw('e'); }));
        CHECK(peer.error.number == (host == kLocal ? 10061 : 11001));
        CHECK(peer.Is(SocketState::sckError));
        peer.socket->CloseSck();
        CHECK(peer.log == "e");
    }
    Peer listener, server;
    listener.acceptor = &server;
    listener.socket->Listen();
    peer.socket->Connect("localhost", listener.socket->LocalPort());
    CHECK(peer.Is(SocketState::sckResolvingHost));
    Peer second;
    second.socket->Connect("localhost", listener.socket->LocalPort());
    CHECK(PumpUntil([&] { return peer.Is(SocketState::sckConnected) && second.Saw('c'); }));
}

TEST_CASE_FIXTURE(NothingLeft, "a look-up given up answers nobody") {
    Peer keepsWindow, peer;
    keepsWindow.socket->Listen();
    for (const bool windowStays : {true, false}) {
        peer.socket->Connect("localhost", 1);
        if (!windowStays)
            keepsWindow.socket->CloseSck();
        peer.socket->CloseSck();
        CHECK(CountSockets().lookups == 0);
        Peer().socket->Connect("no-such-host.invalid", 1); // and is gone
        PumpFor(200);
        CHECK(peer.log.empty());
    }
}

TEST_CASE_FIXTURE(NothingLeft, "what the system does not take at once goes out in pieces") {
    Pair pair;
    std::string big;
    big.resize(9'000'000);
    for (std::size_t i = 0; i < big.size(); ++i)
        big[i] = static_cast<char>(i * 7 / 3);
    int more = 3;
    pair.server.react = [&](char event) {
        if (event == 'p' && more-- > 0)
            pair.server.socket->SendData(std::string(1, static_cast<char>('0' + more)));
        if (event == 's')
            pair.server.socket->CloseSck();
    };
    pair.server.socket->SendData(big);
    REQUIRE(PumpUntil([&] { return pair.client.Saw('x'); }));
    CHECK(pair.client.received == big + "210");
    CHECK(pair.server.log.ends_with("pps")); // one completion, after several pieces
}

TEST_CASE_FIXTURE(NothingLeft, "an unclaimed connection is closed") {
    Peer listener, client;
    listener.socket->Listen();
    client.socket->Connect(kLocal, listener.socket->LocalPort());
    REQUIRE(PumpUntil([&] { return client.Saw('x'); }));
    CHECK(listener.log == "r");
    CHECK(CountSockets().accepted == 0);
}

TEST_CASE_FIXTURE(NothingLeft, "datagrams") {
    Peer left, right;
    for (Peer* peer : {&left, &right})
        peer->socket->SetProtocol(SocketProtocol::UDP);
    right.socket->Bind(0, kLocal);
    left.socket->Connect(kLocal, right.socket->LocalPort());
    CHECK(left.Is(SocketState::sckOpen));
    right.takeData = false;
    left.socket->SendData("one");
    left.socket->SendData("three");
    CHECK(left.log == "psps");
    REQUIRE(PumpUntil([&] { return right.arrived == 3; }));
    SocketValue data;
    right.socket->PeekData(data);
    PumpFor(100);
    CHECK(right.log == "d"); // once, however long it waits
    right.socket->PeekData(data);
    right.socket->GetData(data);
    CHECK(data == SocketValue(std::string("one")));
    REQUIRE(PumpUntil([&] { return right.arrived == 8; }));
    right.socket->GetData(data, VarType::String, 2);
    CHECK(data == SocketValue(std::string("th")));
    CHECK(right.socket->BytesReceived() == 0);

    right.socket->SetRemoteHost("localhost"); // back to the sender's port
    right.socket->SendData("back");
    REQUIRE(PumpUntil([&] { return left.received == "back"; }));
    left.socket->SendData(std::string(70'000, 'x'));
    CHECK(left.error.number == 10040);
    CHECK(left.error.source == "clsSocketMaster.SendBufferedData");
}

TEST_CASE_FIXTURE(NothingLeft, "in every event a socket may be closed, reused and destroyed") {
    enum Action { Close, CloseAndReuse, Destroy };
    for (const char event : {'c', 'd', 'x', 'e', 'p', 's', 'r'}) {
        for (const Action action : {Close, CloseAndReuse, Destroy}) {
            CAPTURE(event);
            CAPTURE(action);
            Peer listener, server, client;
            listener.acceptor = &server;
            listener.socket->Listen();
            const std::int32_t port = listener.socket->LocalPort();
            Peer& subject = event == 'r' ? listener : client;
            bool acted = false;
            std::string logThen;
            subject.react = [&](char happened) {
                if (happened != event || acted)
                    return;
                acted = true;
                logThen = subject.log;
                if (action == Destroy)
                    return subject.socket.reset();
                subject.socket->CloseSck();
                if (action == CloseAndReuse && event == 'r')
                    subject.socket->Listen();
                else if (action == CloseAndReuse)
                    subject.socket->Connect(kLocal, port);
            };
            client.socket->Connect(kLocal, event == 'e' ? 1 : port);
            if (event != 'e') {
                REQUIRE(PumpUntil([&] { return server.Is(SocketState::sckConnected); }));
                PumpUntil([&] { return acted || client.Is(SocketState::sckConnected); });
                if (!acted)
                    client.socket->SendData(std::string(100'000, 'u'));
                if (!acted) {
                    server.socket->SendData(std::string(700'000, 'd'));
                    server.socket->CloseSck();
                }
            }
            REQUIRE(PumpUntil([&] { return acted; }));
            subject.react = nullptr;
            PumpFor(20);
            if (action != CloseAndReuse)
                CHECK(subject.log == logThen);
            else if (event != 'r')
                CHECK(PumpUntil([&] { return subject.log.size() > logThen.size(); }));
        }
    }
}

TEST_CASE_FIXTURE(NothingLeft, "bytes overtaken by the notice of the close are delivered first") {
    const std::string bytes(50'000, 'b'); // what the system takes at once, and more than one piece
    for (const char action : {'n', 'c', 'd'}) { // nothing, close, destroy
        CAPTURE(action);
        Pair pair;
        PostMessageA(CountSockets().window, 2049, pair.client.socket->SocketHandle(), FD_CLOSE);
        pair.server.socket->SendData(bytes);
        REQUIRE(pair.server.Saw('s'));
        // No messages run meanwhile: the notice stays in front of the bytes'.
        for (u_long waiting = 0; waiting < bytes.size();)
            REQUIRE(ioctlsocket(pair.client.socket->SocketHandle(), FIONREAD, &waiting) == 0);
        pair.client.react = [&](char) {
            if (action == 'd' && pair.client.log == "cd")
                pair.client.socket.reset();
            else if (action == 'c' && pair.client.log == "cd")
                pair.client.socket->CloseSck();
        };
        REQUIRE(PumpUntil(
            [&] { return pair.client.Saw('x') || !pair.client.Is(SocketState::sckConnected); }));
        PumpFor(20);
        CHECK(pair.client.log.ends_with(action == 'n' ? "dx" : "cd"));
        if (action == 'n')
            CHECK(pair.client.received == bytes);
    }
}

TEST_CASE_FIXTURE(NothingLeft, "no notification reaches the next socket with its number") {
    Pair pair;
    const std::uintptr_t number = pair.client.socket->SocketHandle();
    const LPARAM reset = WSAMAKESELECTREPLY(FD_CLOSE, WSAECONNRESET);
    const HWND window = CountSockets().window;
    PostMessageA(window, 2049, number, reset);
    pair.client.socket->CloseSck();

    std::vector<std::unique_ptr<Peer>> others;
    Peer* successor = nullptr;
    while (successor == nullptr && others.size() < 50) {
        Peer& other = *others.emplace_back(std::make_unique<Peer>());
        other.socket->Bind(0, kLocal);
        if (other.socket->SocketHandle() == number)
            successor = &other;
    }
    REQUIRE(successor != nullptr);
    PumpFor(50);
    CHECK(successor->log.empty());
    CHECK(successor->Is(SocketState::sckClosed));

    PostMessageA(window, 2049, number, reset); // and its own do reach it
    REQUIRE(PumpUntil([&] { return successor->Saw('e'); }));
    CHECK(successor->error.number == 10054);
    CHECK(successor->error.description == "Connection reset by peer.");
    CHECK(successor->error.source == "clsSocketMaster.PostSocket");
    CHECK(successor->Is(SocketState::sckError));
}
