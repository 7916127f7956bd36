#include "ui/kit/clsLayout.h"

#include "ui/kit/modWindow.h"

#include <algorithm>

namespace vesk {

void clsLayout::Attach(HWND dialog) {
    dialog_ = dialog;
    client_ = InnerSize(dialog);
    RECT whole{};
    GetWindowRect(dialog, &whole);
    window_ = {whole.right - whole.left, whole.bottom - whole.top};
}

void clsLayout::Add(HWND control, unsigned follows) {
    items_.push_back({control, AreaOf(control), follows});
}

void clsLayout::OnSize() const {
    if (!dialog_ || IsIconic(dialog_))
        return;
    const SIZE now = InnerSize(dialog_);
    const LONG gainX = std::max<LONG>(0, now.cx - client_.cx);
    const LONG gainY = std::max<LONG>(0, now.cy - client_.cy);
    for (const Item& item : items_) {
        const auto does = [&](unsigned what) { return (item.follows & what) != 0; };
        SetWindowPos(item.control, nullptr, item.area.left + (does(kMoveX) ? gainX : 0),
                     item.area.top + (does(kMoveY) ? gainY : 0),
                     item.area.right - item.area.left + (does(kGrowX) ? gainX : 0),
                     item.area.bottom - item.area.top + (does(kGrowY) ? gainY : 0),
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
        info.ptMinTrackSize = {window_.cx, window_.cy};
}

} // namespace vesk
