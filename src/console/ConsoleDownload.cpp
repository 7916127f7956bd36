#include "console/ConsoleDownload.h"

#include "base/modText.h"
#include "console/DownloadLine.h"
#include "console/Interrupt.h"

#include <windows.h>

namespace vesk {

namespace {

/// Waits for a message or Ctrl+C and lets all waiting messages run.
void RunMessages() {
    HANDLE interrupt = InterruptEvent();
    MsgWaitForMultipleObjects(1, &interrupt, FALSE, INFINITE, QS_ALLINPUT);
    MSG message;
    while (!WasInterrupted() && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0)
        DispatchMessageA(&message);
}

} // namespace

DownloadResult ConsoleDownload::Run(const std::string& urls, const std::string& destination,
                                    const std::string& crc, const ProxySettings& proxy) {
    fileName_ = FileNameOf(destination);
    drawnAt_ = 0;
    clsDownloadSession session(*this, urls, destination, crc, proxy);
    session.Start();
    while (!session.Finished()) {
        if (WasInterrupted())
            session.Cancel();
        else
            RunMessages();
    }
    return session.Result();
}

void ConsoleDownload::OnProgress(const DownloadProgress& progress) {
    constexpr std::uint32_t kDistance = 100; // milliseconds: a terminal is slower than a network
    const std::uint32_t now = GetTickCount();
    if (drawnAt_ != 0 && now - drawnAt_ < kDistance)
        return;
    drawnAt_ = now;
    terminal_.Draw(DownloadLine(progress, fileName_));
}

} // namespace vesk
