#include "ui/kit/clsListNote.h"

#include "ui/kit/modResolution.h"

#include <commctrl.h>

#include <optional>
#include <utility>

namespace vesk {

void clsListNote::Attach(HWND list, std::string text) {
    list_ = list;
    text_ = std::move(text);
    link_.Attach(list, [this](UINT message, WPARAM wparam, LPARAM lparam) {
        std::optional<LRESULT> result;
        if (message == WM_PAINT && ListView_GetItemCount(list_) == 0) {
            result = link_.PassOn(message, wparam, lparam);
            Paint();
        }
        return result;
    });
}

void clsListNote::SetNote(const std::string& text) {
    text_ = text;
    InvalidateRect(list_, nullptr, TRUE);
}

void clsListNote::Paint() const {
    constexpr int kMargin = 6; // pixels at 96 DPI
    RECT area{};
    GetClientRect(list_, &area);
    RECT header{};
    GetWindowRect(ListView_GetHeader(list_), &header);
    area.top += header.bottom - header.top;
    const int margin = ScalePixels(list_, kMargin);
    InflateRect(&area, -margin, -margin);
    const HDC dc = GetDC(list_);
    const HGDIOBJ before =
        SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageA(list_, WM_GETFONT, 0, 0)));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    DrawTextA(dc, text_.c_str(), -1, &area, DT_WORDBREAK | DT_NOPREFIX);
    SelectObject(dc, before);
    ReleaseDC(list_, dc);
}

} // namespace vesk
