#pragma once

#include <windows.h>

namespace vesk {

/// Gives a top-level window a dark title bar where the user wants programs dark and the system can
/// do it (Windows 10 and later, asked for at run time); nothing elsewhere.
void FollowDarkMode(HWND window);

} // namespace vesk
