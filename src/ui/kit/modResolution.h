#pragma once

#include <windows.h>

/// Resolutions of the screen, in dots per inch; 96 is the plain one.
namespace vesk {

/// That of the main monitor when the user logged on.
int SystemDpi();

/// That of the monitor which the system counts a window to; the system's where it does not tell.
int DpiOfWindow(HWND window);

/// That which the dialog around a window is laid out for; the system's for null.
int DpiOf(HWND window);

/// Pixels in a window's dialog for a measure given in pixels at 96 DPI.
int ScalePixels(HWND window, int pixels);

/// Width of a window's vertical scroll bar, also while it has none.
int ScrollBarWidth(HWND window);

} // namespace vesk
