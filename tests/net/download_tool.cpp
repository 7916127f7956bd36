// Downloads for tests that bring their own servers.
//
//   download_tool [--proxy HOST:PORT] [--access N] [--act EVENT:ACTION] [--no-redirect 1] URL
//   TARGET
// prints every event of one download as a line (--only-time: only how long it took).
//
//   download_tool --session SECONDS [--proxy HOST:PORT] [--held 1] TARGET [CHECKSUM|- URLS]...
// runs sessions one after the other, each given up after so many seconds of silence and with the
// target open elsewhere if it is to be held, and prints of each its result, the sizes of its two
// files, what it left open, and the reason.
#include "net/MessagePump.h"
#include "net/clsDownload.h"
#include "net/clsDownloadSession.h"
#include "net/clsSocketServiceHold.h"

#include "base/modFile.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using namespace vesk;

namespace {

/// What the command line says: "--name value", "--only-time", and names.
struct Options {
    std::map<std::string, std::string> values;
    std::vector<std::string> names;
    ProxySettings proxy;

    Options(int count, char** words) {
        for (int i = 1; i < count; ++i) {
            const std::string word = words[i];
            if (!word.starts_with("--"))
                names.push_back(word);
            else
                values[word] = word == "--only-time" || i + 1 == count ? "" : words[++i];
        }
        if (const std::string text = Text("--proxy"); !text.empty()) {
            const std::size_t colon = text.rfind(':');
            proxy = {Has("--access") ? std::stoi(Text("--access")) : kAccessProxy,
                     text.substr(0, colon), std::stoi(text.substr(colon + 1))};
        }
    }
    [[nodiscard]] bool Has(const std::string& name) const { return values.contains(name); }
    [[nodiscard]] std::string Text(const std::string& name) const {
        return Has(name) ? values.at(name) : std::string();
    }
};

void Say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

class Recorder : public DownloadEvents {
public:
    explicit Recorder(const Options& options)
        : options_(options), download_(std::make_unique<clsDownload>(*this)) {
        download_->SetAccessType(options.proxy.accessType);
        download_->SetProxy(options.proxy.proxy);
        download_->SetProxyPort(options.proxy.proxyPort);
        download_->SetDisableRedirection(options.Has("--no-redirect"));
    }

    void Run() {
        download_->Download(options_.names.at(0), options_.names.at(1));
        if (!test::PumpUntil([this] { return over_; }, 60000))
            Say("not over after a minute");
        Tell("Bytes " + std::to_string(bytes_));
    }

private:
    void Tell(const std::string& event) const {
        if (!options_.Has("--only-time"))
            Say(event);
    }
    void OnStarting(std::int32_t fileSize, const std::string& header) override {
        Tell("Starting " + std::to_string(fileSize) + " " + std::to_string(header.size()) + " " +
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
        Tell("Completed");
        Act("completed", true);
    }

    /// Does once what "--act event:action" asks for. @param last whether nothing follows the event
    void Act(const std::string& event, bool last) {
        over_ = last;
        const std::string act = options_.Text("--act");
        if (acted_ || !act.starts_with(event + ":"))
            return;
        acted_ = true;
        const std::string action = act.substr(event.size() + 1);
        Say(action + " in " + event);
        if (action == "restart") {
            over_ = false;
            bytes_ = 0;
            return download_->Download();
        }
        if (action == "destroy")
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

class Waiter : public DownloadSessionEvents {
public:
    void OnProgress(const DownloadProgress&) override {}
    void OnFinished() override {}
};

/// Handles that this process has open, sockets among them. Wine does not count them, so each
/// number that could be one is tried.
int OpenHandles() {
    int count = 0;
    for (std::uintptr_t number = 4; number < 0x4000; number += 4) {
        DWORD flags = 0;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) != 0 ? 1 : 0;
    }
    return count;
}

std::string Size(const std::string& path) {
    if (!FileExists(path))
        return "none";
    return std::to_string(ReadWholeFile(path).size());
}

void RunSession(const Options& options, const std::string& crc, const std::string& urls) {
    const std::string& target = options.names.at(0);
    DownloadOutcome outcome;
    {
        FileHandle held;
        if (options.Has("--held"))
            held.Reset(
                CreateFileA(target.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        Waiter waiter;
        clsDownloadSession session(waiter, {urls, target, crc == "-" ? "" : crc}, options.proxy);
        session.SetTimeout(static_cast<std::uint32_t>(std::stoul(options.Text("--session"))));
        const DWORD start = GetTickCount();
        session.Start();
        while (!session.Finished() && GetTickCount() - start < 60000) {
            test::PumpUntil([&] { return session.Finished(); }, 100);
            session.OnTime();
        }
        outcome = session.Outcome();
    }
    const SocketCounts counts = CountSockets();
    std::printf("%d|%s|%s|%d objects, %zu sockets, %zu lookups, %d windows|%d|",
                static_cast<int>(outcome.result), Size(target).c_str(),
                Size(PartialPath(target)).c_str(), counts.objects, counts.sockets, counts.lookups,
                counts.window != nullptr ? 1 : 0, OpenHandles());
    Say(outcome.reason);
}

} // namespace

int main(int count, char** words) {
    const Options options(count, words);
    const auto& names = options.names;
    if (options.Has("--session")) {
        for (std::size_t i = 1; i + 1 < names.size(); i += 2)
            RunSession(options, names[i], names[i + 1]);
        return 0;
    }
    // What a program does once for all its downloads is loading libraries, and no download.
    std::optional<clsSocketServiceHold> hold;
    if (options.Has("--only-time"))
        hold.emplace();
    Recorder recorder(options);
    const DWORD start = GetTickCount();
    recorder.Run();
    if (options.Has("--only-time"))
        Say("Milliseconds " + std::to_string(GetTickCount() - start));
    return 0;
}
