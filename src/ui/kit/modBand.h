#pragma once

#include <windows.h>

/// The white upper part of the program's windows, with heading and picture.
namespace vesk {

/// Its height in dialog units.
inline constexpr int kBandHeight = 34;

/// Paints a dialog's background: white down to a height given in dialog units, below it the usual.
/// @return TRUE, as the answer to WM_ERASEBKGND
LRESULT PaintBand(HWND dialog, HDC dc, int height);

/// The same for a height in pixels.
LRESULT PaintBandTo(HWND dialog, HDC dc, int pixels);

/// The answer to WM_CTLCOLORSTATIC for a text that stands on white.
INT_PTR OnWhite(HDC dc);

} // namespace vesk
