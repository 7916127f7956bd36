#pragma once

#include "base/UniqueHandle.h"

#include <windows.h>

#include <commctrl.h>

#include <doctest/doctest.h>

namespace vesk::test {

using WindowHandle = UniqueHandle<::DestroyWindow, HWND>;

/// A hidden window; a child of another one when that is given.
inline HWND MakeWindow(const char* className, HWND parent, int width, int height, DWORD style = 0) {
    const INITCOMMONCONTROLSEX request{sizeof request, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&request);
    const HWND window =
        CreateWindowExA(0, className, "", style | (parent ? WS_CHILD : WS_POPUP), 0, 0, width,
                        height, parent, nullptr, GetModuleHandleA(nullptr), nullptr);
    REQUIRE(window);
    return window;
}

/// True when a pixel of an area matches. @param window whose inside it is; null: the screen
template <class Matches>
bool HasPixel(HWND window, const RECT& area, Matches matches) {
    const HDC dc = GetDC(window);
    bool found = false;
    for (LONG y = area.top; y < area.bottom && !found; ++y)
        for (LONG x = area.left; x < area.right && !found; ++x)
            found = matches(GetPixel(dc, static_cast<int>(x), static_cast<int>(y)));
    ReleaseDC(window, dc);
    return found;
}

} // namespace vesk::test
