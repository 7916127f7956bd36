#pragma once

namespace vesk {

/// From now on Ctrl+C does not end the program but asks it to end: WasInterrupted tells.
void WatchForInterrupt();

/// True once Ctrl+C (or Ctrl+Break) was pressed.
bool WasInterrupted();

/// The system's event (a HANDLE) that is set from then on, to wait for. Not the caller's to close.
void* InterruptEvent();

} // namespace vesk
