#pragma once

#include <windows.h>

namespace vesk::test {

/// Lets the thread's messages run until the condition holds. @return false after ten seconds
template <class Condition>
bool PumpUntil(Condition&& condition, DWORD milliseconds = 10000) {
    const DWORD start = GetTickCount();
    while (!condition()) {
        const DWORD elapsed = GetTickCount() - start;
        if (elapsed >= milliseconds)
            return false;
        // Returns also for what an earlier call left in the queue when its time was up.
        MsgWaitForMultipleObjectsEx(0, nullptr, milliseconds - elapsed, QS_ALLINPUT,
                                    MWMO_INPUTAVAILABLE);
        MSG message;
        // Looks at the clock between messages too: some faults keep them coming.
        while (!condition() && GetTickCount() - start < milliseconds &&
               PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0)
            DispatchMessageA(&message);
    }
    return true;
}

/// Lets messages run for a while in which nothing is expected to happen.
inline void PumpFor(DWORD milliseconds) {
    PumpUntil([] { return false; }, milliseconds);
}

} // namespace vesk::test
