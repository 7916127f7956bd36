#include "ui/modBand.h"

namespace vesk {

LRESULT PaintBand(HWND dialog, HDC dc, int height) {
    RECT client{};
    GetClientRect(dialog, &client);
    FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
    RECT band{0, 0, 0, height};
    MapDialogRect(dialog, &band);
    client.bottom = band.bottom;
    FillRect(dc, &client, GetSysColorBrush(COLOR_WINDOW));
    return TRUE;
}

INT_PTR OnWhite(HDC dc) {
    SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    SetBkColor(dc, GetSysColor(COLOR_WINDOW));
    return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_WINDOW));
}

} // namespace vesk
