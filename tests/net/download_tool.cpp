// Downloads one URL and prints every event as a line, for tests that bring their own servers.
#include "net/MessagePump.h"
#include "net/clsDownload.h"
#include "net/clsDownloadSession.h"
#include "net/modSocketMaster.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using namespace vesk;

namespace {

struct Options {
    ProxySettings proxy;
    bool noRedirect = false;
    bool session = false;
    std::string crc;
    int times = 1;
    bool timed = false;             ///< Whether to say how long a download took.
    DWORD cancelAfter = 0;          ///< Milliseconds; 0: never.
    std::string actEvent;           ///< Event in which something is done,
    std::string actAction;          ///< and what: cancel, restart or destroy.
    std::vector<std::string> names; ///< URL, destination
};

void Say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

/// Handles that this process has open, sockets among them. Wine does not count them, so each
/// number that could be one is tried.
int OpenHandles() {
    int count = 0;
    for (std::uintptr_t number = 4; number < 4 * 4096; number += 4) {
        DWORD flags = 0;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) != 0 ? 1 : 0;
    }
    return count;
}

class Recorder : public DownloadEvents {
public:
    explicit Recorder(const Options& options)
        : options_(options), download_(std::make_unique<clsDownload>(*this)) {
        download_->SetAccessType(options.proxy.accessType);
        download_->SetProxy(options.proxy.proxy);
        download_->SetProxyPort(options.proxy.proxyPort);
        download_->SetDisableRedirection(options.noRedirect);
    }

    void Run() {
        over_ = false;
        bytes_ = 0;
        const DWORD start = GetTickCount();
        download_->Download(options_.names.at(0), options_.names.at(1));
        const DWORD limit = options_.cancelAfter != 0 ? options_.cancelAfter : 60000;
        if (!test::PumpUntil([this] { return over_; }, limit)) {
            download_->Cancel();
            Say("Cancelled");
            test::PumpFor(50);
        }
        Say("Bytes " + std::to_string(bytes_));
        if (options_.timed)
            Say("Milliseconds " + std::to_string(GetTickCount() - start));
    }

private:
    void OnStarting(std::int32_t fileSize, const std::string& header) override {
        Say("Starting " + std::to_string(fileSize) + " " + std::to_string(header.size()) + " " +
            header.substr(0, header.find('\r')));
        Act("starting", false);
    }
    void OnDataArrival(std::int32_t bytesTotal) override {
        bytes_ += bytesTotal;
        Act("data", false);
    }
    void OnError(std::int32_t number, const std::string& description) override {
        Say("Error " + std::to_string(number) + " [" + description + "]");
        Act("error", true);
    }
    void OnCompleted() override {
        Say("Completed");
        Act("completed", true);
    }

    /// Does once what was asked for in an event. @param last whether nothing follows the event
    void Act(const std::string& event, bool last) {
        over_ = last;
        if (event != options_.actEvent || acted_)
            return;
        acted_ = true;
        Say(options_.actAction + " in " + event);
        if (options_.actAction == "restart") {
            over_ = false;
            bytes_ = 0;
            return download_->Download();
        }
        if (options_.actAction == "destroy")
            download_.reset();
        else
            download_->Cancel();
        over_ = true;
    }

    const Options& options_;
    std::unique_ptr<clsDownload> download_;
    std::int64_t bytes_ = 0;
    bool over_ = false;
    bool acted_ = false;
};

class SessionRecorder : public DownloadSessionEvents {
public:
    void Run(const Options& options) {
        clsDownloadSession session(*this, options.names.at(0), options.names.at(1), options.crc,
                                   options.proxy);
        session.Start();
        const DWORD limit = options.cancelAfter != 0 ? options.cancelAfter : 60000;
        if (!test::PumpUntil([&] { return session.Finished(); }, limit))
            session.Cancel();
        Say("Progress " + std::to_string(progress_.received) + " of " +
            std::to_string(progress_.fileSize));
        Say("Result " + std::to_string(static_cast<int>(session.Result())));
    }

private:
    void OnProgress(const DownloadProgress& progress) override { progress_ = progress; }
    void OnFinished() override { Say("Finished"); }

    DownloadProgress progress_;
};

Options Parse(int count, char** words) {
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        const auto value = [&] { return i + 1 < count ? std::string(words[++i]) : std::string(); };
        if (word == "--access") {
            options.proxy.accessType = std::atoi(value().c_str());
        } else if (word == "--proxy") {
            const std::string end = value();
            options.proxy.proxy = end.substr(0, end.find(':'));
            options.proxy.proxyPort = std::atoi(end.substr(end.find(':') + 1).c_str());
        } else if (word == "--no-redirect") {
            options.noRedirect = true;
        } else if (word == "--times") {
            options.times = std::atoi(value().c_str());
        } else if (word == "--timed") {
            options.timed = true;
        } else if (word == "--cancel-after") {
            options.cancelAfter = static_cast<DWORD>(std::atoi(value().c_str()));
        } else if (word == "--act") {
            const std::string act = value();
            options.actEvent = act.substr(0, act.find(':'));
            options.actAction = act.substr(act.find(':') + 1);
        } else if (word == "--session") {
            options.session = true;
            options.crc = value();
        } else {
            options.names.push_back(word);
        }
    }
    return options;
}

void SayWhatIsOpen() {
    const SocketCounts counts = CountSockets();
    Say("Open objects " + std::to_string(counts.objects) + " sockets " +
        std::to_string(counts.sockets) + " lookups " + std::to_string(counts.lookups) + " window " +
        (counts.window != nullptr ? "1" : "0") + " handles " + std::to_string(OpenHandles()));
}

} // namespace

int main(int count, char** words) {
    const Options options = Parse(count, words);
    if (options.names.size() != 2)
        return 64;
    if (options.session) {
        SessionRecorder().Run(options);
        SayWhatIsOpen();
        return 0;
    }
    auto recorder = std::make_unique<Recorder>(options);
    for (int i = 0; i < options.times; ++i) {
        recorder->Run();
        SayWhatIsOpen();
    }
    return 0;
}
