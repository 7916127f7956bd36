#include "console/Interrupt.h"

#include <windows.h>

#include <atomic>

namespace vesk {

namespace {

// Windows calls the handler on a thread of its own.
std::atomic<bool> interrupted{false};

BOOL WINAPI OnControl(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        return FALSE;
    interrupted = true;
    return TRUE;
}

} // namespace

void WatchForInterrupt() {
    SetConsoleCtrlHandler(OnControl, TRUE);
}

bool WasInterrupted() {
    return interrupted;
}

} // namespace vesk
