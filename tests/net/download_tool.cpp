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

/// What the command line says: "--name value", "--only-time", and two names: URL, destination.
struct Options {
    std::map<std::string, std::string> values;
    std::vector<std::string> names;

    Options(int count, char** words) {
        for (int i = 1; i < count; ++i) {
            const std::string word = words[i];
            if (!word.starts_with("--"))
                names.push_back(word);
            else
                values[word] = word == "--only-time" || i + 1 == count ? "" : words[++i];
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
        const std::string proxy = options.Text("--proxy");
        const std::size_t colon = proxy.find(':');
        download_->SetAccessType(std::atoi(options.Text("--access").c_str()));
        download_->SetProxy(proxy.substr(0, colon));
        download_->SetProxyPort(std::atoi(proxy.substr(colon + 1).c_str()));
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
    recorder.Run();
    if (options.Has("--only-time"))
        Say("Milliseconds " + std::to_string(GetTickCount() - start));
    return 0;
}
