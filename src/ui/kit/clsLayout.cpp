#include "ui/kit/clsLayout.h"

#include "ui/kit/modResolution.h"
#include "ui/kit/modWindow.h"

#include <algorithm>

namespace vesk {

void clsLayout::Attach(HWND dialog) {
    dialog_ = dialog;
    dpi_ = DpiOf(dialog);
    client_ = InnerSize(dialog);
    RECT whole{};
    GetWindowRect(dialog, &whole);
    window_ = {whole.right - whole.left, whole.bottom - whole.top};
}

void clsLayout::Add(HWND control, unsigned follows) {
    RECT area = AreaOf(control);
    for (LONG* edge : {&area.left, &area.top, &area.right, &area.bottom})
        *edge = MulDiv(static_cast<int>(*edge), dpi_, DpiOf(dialog_));
    items_.push_back({control, area, follows});
}

void clsLayout::Follow(unsigned how, std::initializer_list<int> ids) {
    for (const int id : ids)
        Add(GetDlgItem(dialog_, id), how);
}

int clsLayout::Scaled(LONG pixels) const {
    return MulDiv(static_cast<int>(pixels), DpiOf(dialog_), dpi_);
}

void clsLayout::OnSize() const {
    if (!dialog_ || IsIconic(dialog_))
        return;
    const SIZE now = InnerSize(dialog_);
    const LONG gainX = std::max<LONG>(0, now.cx - Scaled(client_.cx));
    const LONG gainY = std::max<LONG>(0, now.cy - Scaled(client_.cy));
    for (const Item& item : items_) {
        const auto does = [&](unsigned what) { return (item.follows & what) != 0; };
        const LONG left = Scaled(item.area.left);
        const LONG top = Scaled(item.area.top);
        SetWindowPos(item.control, nullptr, left + (does(kMoveX) ? gainX : 0),
                     top + (does(kMoveY) ? gainY : 0),
                     Scaled(item.area.right) - left + (does(kGrowX) ? gainX : 0),
                     Scaled(item.area.bottom) - top + (does(kGrowY) ? gainY : 0),
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
    RedrawWindow(dialog_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

bool clsLayout::Handle(UINT message, LPARAM lparam) const {
    if (message == WM_SIZE)
        OnSize();
    else if (message == WM_GETMINMAXINFO)
        LimitSize(*reinterpret_cast<MINMAXINFO*>(lparam));
    else
        return false;
    return true;
}

void clsLayout::LimitSize(MINMAXINFO& info) const {
    if (dialog_)
        info.ptMinTrackSize = {Scaled(window_.cx), Scaled(window_.cy)};
}

} // namespace vesk
