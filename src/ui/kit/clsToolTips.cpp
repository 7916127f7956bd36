#include "ui/kit/clsToolTips.h"

#include "ui/kit/modResolution.h"
#include "ui/kit/modWindow.h"

#include <commctrl.h>

namespace vesk {

namespace {

constexpr int kTipWidth = 320; // pixels at 96 DPI

} // namespace

void clsToolTips::Attach(HWND dialog) {
    dialog_ = dialog;
    tips_ = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_NOPREFIX, 0, 0,
                            0, 0, dialog, nullptr, ProgramInstance(), nullptr);
    SendMessageA(tips_, TTM_SETMAXTIPWIDTH, 0, ScalePixels(dialog, kTipWidth));
}

void clsToolTips::Add(int controlId, const char* text) const {
    TTTOOLINFOA tool{};
    tool.cbSize = TTTOOLINFOA_V2_SIZE;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = dialog_;
    tool.uId = reinterpret_cast<UINT_PTR>(GetDlgItem(dialog_, controlId));
    tool.lpszText = const_cast<char*>(text); // only read
    SendMessageA(tips_, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
}

void clsToolTips::ShowNow() const {
    SendMessageA(tips_, TTM_POPUP, 0, 0);
}

} // namespace vesk
