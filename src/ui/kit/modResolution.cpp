#include "ui/kit/modResolution.h"

#include "base/modSystemLibrary.h"
#include "ui/kit/clsDialogScale.h"

namespace vesk {

int SystemDpi() {
    static const int dpi = [] {
        const HDC screen = GetDC(nullptr);
        const int found = GetDeviceCaps(screen, LOGPIXELSX);
        ReleaseDC(nullptr, screen);
        return found;
    }();
    return dpi;
}

int DpiOfWindow(HWND window) {
    using GetDpi = UINT(WINAPI*)(HWND);
    static const auto getDpi = SystemFunction<GetDpi>("user32.dll", "GetDpiForWindow");
    const UINT dpi = getDpi && window ? getDpi(window) : 0;
    return dpi != 0 ? static_cast<int>(dpi) : SystemDpi();
}

int DpiOf(HWND window) {
    for (HWND at = window; at; at = GetParent(at)) {
        if (const auto* const scale = clsDialogScale::Of(at))
            return scale->Dpi();
    }
    return DpiOfWindow(window);
}

int ScalePixels(HWND window, int pixels) {
    return MulDiv(pixels, DpiOf(window), 96);
}

int ScrollBarWidth(HWND window) {
    using GetMetrics = int(WINAPI*)(int, UINT);
    static const auto getMetrics =
        SystemFunction<GetMetrics>("user32.dll", "GetSystemMetricsForDpi");
    return getMetrics ? getMetrics(SM_CXVSCROLL, static_cast<UINT>(DpiOf(window)))
                      : GetSystemMetrics(SM_CXVSCROLL);
}

} // namespace vesk
