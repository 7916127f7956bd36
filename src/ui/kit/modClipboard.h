#pragma once

#include <windows.h>

#include <string>

namespace vesk {

/// Puts a text on the clipboard. @throws Failure when another program keeps the clipboard
/// open
void PutOnClipboard(HWND owner, const std::string& text);

} // namespace vesk
