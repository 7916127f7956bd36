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
    // One copy: each look at the screen itself would be a question to the display.
    const HDC dc = GetDC(window);
    const HDC copy = CreateCompatibleDC(dc);
    const int width = static_cast<int>(area.right - area.left);
    const int height = static_cast<int>(area.bottom - area.top);
    const HBITMAP bitmap = CreateCompatibleBitmap(dc, width, height);
    const HGDIOBJ before = SelectObject(copy, bitmap);
    BitBlt(copy, 0, 0, width, height, dc, static_cast<int>(area.left), static_cast<int>(area.top),
           SRCCOPY);
    bool found = false;
    for (int y = 0; y < height && !found; ++y)
        for (int x = 0; x < width && !found; ++x)
            found = matches(GetPixel(copy, x, y));
    SelectObject(copy, before);
    DeleteObject(bitmap);
    DeleteDC(copy);
    ReleaseDC(window, dc);
    return found;
}

} // namespace vesk::test
