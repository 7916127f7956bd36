#include "console/clsConsoleDownload.h"

#include "base/modText.h"
#include "console/modDownloadLine.h"
#include "console/modInterrupt.h"

#include <windows.h>

#include <cstdint>

namespace vesk {

namespace {

/// Milliseconds between two looks at the clock.
constexpr std::uint32_t kTick = 250;

/// Lets waiting messages run, for no longer than a tick: a fast server keeps them coming. Where
/// none waits, waits for one or for Ctrl+C.
void RunMessages(const clsDownloadSession& session) {
    const std::uint32_t start = GetTickCount();
    bool ran = false;
    MSG message;
    while (!session.Finished() && !WasInterrupted() && GetTickCount() - start < kTick &&
           PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        DispatchMessageA(&message);
        ran = true;
    }
    HANDLE interrupt = InterruptEvent();
    if (!ran)
        MsgWaitForMultipleObjects(1, &interrupt, FALSE, kTick, QS_ALLINPUT);
}

} // namespace

DownloadOutcome clsConsoleDownload::Run(const DownloadRequest& request, const ProxySettings& proxy,
                                        int timeout) {
    fileName_ = FileNameOf(request.destination);
    drawnAt_ = 0;
    clsDownloadSession session(*this, request, proxy);
    session.SetTimeout(static_cast<std::uint32_t>(timeout));
    session.Start();
    session.OnTime();
    std::uint32_t lastTick = GetTickCount();
    while (!session.Finished()) {
        if (WasInterrupted())
            session.Cancel();
        else
            RunMessages(session);
        if (GetTickCount() - lastTick < kTick)
            continue;
        lastTick = GetTickCount();
        session.OnTime();
    }
    return session.Outcome();
}

void clsConsoleDownload::OnProgress(const DownloadProgress& progress) {
    constexpr std::uint32_t kDistance = 100; // milliseconds: a terminal is slower than a network
    const std::uint32_t now = GetTickCount();
    if (drawnAt_ != 0 && now - drawnAt_ < kDistance)
        return;
    drawnAt_ = now;
    terminal_.Draw(DownloadLine(progress, fileName_));
}

} // namespace vesk
