// Downloads one URL and prints every event as a line, for tests that bring their own servers.
#include "net/MessagePump.h"
#include "net/clsDownload.h"
#include "net/modSocketMaster.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using namespace vesk;

namespace {

/// What the command line says: "--name value", switches, and two names: URL, destination.
struct Options {
    std::map<std::string, std::string> values;
    std::vector<std::string> names;

    Options(int count, char** words) {
        for (int i = 1; i < count; ++i) {
            const std::string word = words[i];
            if (!word.starts_with("--"))
                names.push_back(word);
            else if (word == "--only-time" || word == "--no-redirect" || i + 1 == count)
                values[word] = "1";
            else
                values[word] = words[++i];
        }
    }
    [[nodiscard]] bool Has(const std::string& name) const { return values.contains(name); }
    [[nodiscard]] std::string Text(const std::string& name) const {
        return Has(name) ? values.at(name) : std::string();
    }
    [[nodiscard]] int Number(const std::string& name, int otherwise) const {
        return Has(name) ? std::atoi(values.at(name).c_str()) : otherwise;
    }
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
        const std::string proxy = options.Text("--proxy");
        const std::size_t colon = proxy.find(':');
        download_->SetAccessType(options.Number("--access", 0));
        download_->SetProxy(proxy.substr(0, colon));
        download_->SetProxyPort(std::atoi(proxy.substr(colon + 1).c_str()));
        download_->SetDisableRedirection(options.Has("--no-redirect"));
    }

    void Run() {
        over_ = false;
        bytes_ = 0;
        download_->Download(options_.names.at(0), options_.names.at(1));
        const auto limit = static_cast<DWORD>(options_.Number("--cancel-after", 60000));
        if (!test::PumpUntil([this] { return over_; }, limit)) {
            download_->Cancel();
            Say("Cancelled");
            test::PumpFor(50);
        }
        if (options_.Has("--only-time"))
            return;
        Say("Bytes " + std::to_string(bytes_));
    }

private:
    void OnStarting(std::int32_t fileSize, const std::string& header) override {
        if (!options_.Has("--only-time"))
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
        if (!options_.Has("--only-time"))
            Say("Completed");
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

void SayWhatIsOpen() {
    const SocketCounts counts = CountSockets();
    Say("Open objects " + std::to_string(counts.objects) + " sockets " +
        std::to_string(counts.sockets) + " lookups " + std::to_string(counts.lookups) + " window " +
        (counts.window != nullptr ? "1" : "0") + " handles " + std::to_string(OpenHandles()));
}

} // namespace

int main(int count, char** words) {
    const Options options(count, words);
    if (options.names.size() != 2)
        return 64;
    // What a program does once for all its downloads is loading libraries, and no download.
    std::optional<SocketServiceHold> hold;
    if (options.Has("--only-time"))
        hold.emplace();
    Recorder recorder(options);
    const DWORD start = GetTickCount();
    for (int i = 0; i < options.Number("--times", 1); ++i) {
        recorder.Run();
        if (!options.Has("--only-time"))
            SayWhatIsOpen();
    }
    if (options.Has("--only-time"))
        Say("Milliseconds " + std::to_string(GetTickCount() - start));
    return 0;
}
