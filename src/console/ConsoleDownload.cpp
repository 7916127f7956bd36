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

DownloadOutcome ConsoleDownload::Run(const DownloadRequest& request, const ProxySettings& proxy) {
    fileName_ = FileNameOf(request.destination);
    drawnAt_ = 0;
    clsDownloadSession session(*this, request, proxy);
    session.Start();
    while (!session.Finished()) {
        if (WasInterrupted())
            session.Cancel();
        else
            RunMessages();
    }
    return session.Outcome();
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
