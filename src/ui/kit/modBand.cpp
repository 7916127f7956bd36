#include "ui/kit/modBand.h"

#include "ui/kit/clsDialogScale.h"

namespace vesk {

LRESULT PaintBand(HWND dialog, HDC dc, int height) {
    RECT band{0, 0, 0, height};
    MapUnits(dialog, band);
    return PaintBandTo(dialog, dc, band.bottom);
}

LRESULT PaintBandTo(HWND dialog, HDC dc, int pixels) {
    RECT area{};
    GetClientRect(dialog, &area);
    const LONG bottom = area.bottom;
    area.bottom = pixels;
    FillRect(dc, &area, GetSysColorBrush(COLOR_WINDOW));
    area.top = pixels;
    area.bottom = bottom;
    FillRect(dc, &area, GetSysColorBrush(COLOR_BTNFACE));
    return TRUE;
}

INT_PTR OnWhite(HDC dc) {
    SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    SetBkColor(dc, GetSysColor(COLOR_WINDOW));
    return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_WINDOW));
}

} // namespace vesk
