// Runs download sessions one after the other and prints of each its result, whether its two files
// are there, and the reason, for tests that bring their own servers. Arguments: the proxy as
// host:port, or "direct"; seconds of silence; the destination; then checksum ("-" for none) and
// addresses of each download.
#include "net/MessagePump.h"
#include "net/clsDownloadSession.h"

#include "base/modFile.h"

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace vesk;

namespace {

class Waiter : public DownloadSessionEvents {
public:
    void OnProgress(const DownloadProgress&) override {}
    void OnFinished() override {}
};

ProxySettings ProxyOf(const std::string& text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos)
        return {};
    return {kAccessProxy, text.substr(0, colon), std::atoi(text.c_str() + colon + 1)};
}

std::string Size(const std::string& path) {
    if (!FileExists(path))
        return "none";
    return std::to_string(ReadWholeFile(path).size());
}

} // namespace

int main(int count, char** words) {
    if (count < 6)
        return 64;
    const std::string destination = words[3];
    for (int i = 4; i + 1 < count; i += 2) {
        const std::string crc = words[i];
        Waiter waiter;
        clsDownloadSession session(waiter, {words[i + 1], destination, crc == "-" ? "" : crc},
                                   ProxyOf(words[1]));
        session.SetTimeout(static_cast<std::uint32_t>(std::atoi(words[2])));
        const DWORD start = GetTickCount();
        session.Start();
        while (!session.Finished() && GetTickCount() - start < 60000) {
            test::PumpUntil([&] { return session.Finished(); }, 100);
            session.OnTime();
        }
        const DownloadOutcome outcome = session.Outcome();
        std::printf("%d|%s|%s|%s\n", static_cast<int>(outcome.result), Size(destination).c_str(),
                    Size(PartialPath(destination)).c_str(), outcome.reason.c_str());
        std::fflush(stdout);
    }
    return 0;
}
