#include "console/modInterrupt.h"

#include "base/UniqueHandle.h"
#include "base/modSystemError.h"

#include <atomic>

namespace vesk {

namespace {

using EventHandle = UniqueHandle<::CloseHandle, HANDLE>;

// Windows calls the control handler on a thread of its own.
std::atomic<bool> interrupted{false};

const EventHandle& Event() {
    static const EventHandle event(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    return event;
}

BOOL WINAPI OnControl(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        return FALSE;
    interrupted = true;
    SetEvent(Event().Get());
    return TRUE;
}

} // namespace

void WatchForInterrupt() {
    if (!Event())
        ThrowLastError("cannot create", "an event");
    SetConsoleCtrlHandler(OnControl, TRUE);
}

bool WasInterrupted() {
    return interrupted;
}

void* InterruptEvent() {
    return Event().Get();
}

} // namespace vesk
