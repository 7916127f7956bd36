#pragma once

namespace vesk {

/// From now on Ctrl+C does not end the program but asks it to end: see WasInterrupted.
void WatchForInterrupt();

/// True once Ctrl+C (or Ctrl+Break) was pressed.
bool WasInterrupted();

/// An event of the system (a HANDLE) to wait for, set once Ctrl+C was pressed. Not the caller's
/// to close.
void* InterruptEvent();

} // namespace vesk
