// Runs download sessions one after the other and prints of each its result, the sizes of its two
// files, what it left open, and the reason, for tests that bring their own servers. Arguments: the
// proxy as host:port, or "direct"; seconds of silence; the destination; then checksum ("-" for
// none) and addresses of each download.
#include "net/MessagePump.h"
#include "net/clsDownloadSession.h"
#include "net/modSocketMaster.h"

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

std::string Size(const std::string& path) {
    if (!FileExists(path))
        return "none";
    return std::to_string(ReadWholeFile(path).size());
}

/// One download. @param i the place of its checksum among the words
DownloadOutcome Run(char** words, int i) {
    const std::string crc = words[i];
    Waiter waiter;
    clsDownloadSession session(waiter, {words[i + 1], words[3], crc == "-" ? "" : crc},
                               ProxyOf(words[1]));
    session.SetTimeout(static_cast<std::uint32_t>(std::atoi(words[2])));
    const DWORD start = GetTickCount();
    session.Start();
    while (!session.Finished() && GetTickCount() - start < 60000) {
        test::PumpUntil([&] { return session.Finished(); }, 100);
        session.OnTime();
    }
    return session.Outcome();
}

} // namespace

int main(int count, char** words) {
    if (count < 6)
        return 64;
    const std::string destination = words[3];
    for (int i = 4; i + 1 < count; i += 2) {
        const DownloadOutcome outcome = Run(words, i);
        const SocketCounts counts = CountSockets();
        std::printf("%d|%s|%s|%d objects, %zu sockets, %zu lookups, %d windows|%d|%s\n",
                    static_cast<int>(outcome.result), Size(destination).c_str(),
                    Size(PartialPath(destination)).c_str(), counts.objects, counts.sockets,
                    counts.lookups, counts.window != nullptr ? 1 : 0, OpenHandles(),
                    outcome.reason.c_str());
        std::fflush(stdout);
    }
    return 0;
}
