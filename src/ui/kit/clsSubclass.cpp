#include "ui/kit/clsSubclass.h"

#include "ui/kit/modWindow.h"

#include <commctrl.h>

#include <exception>
#include <utility>

namespace vesk {

/// What the control holds on to. A message at hand keeps it, so that its handler can destroy the
/// object that the handler belongs to.
struct clsSubclass::Link : std::enable_shared_from_this<Link> {
    HWND window = nullptr; ///< Null once the control is gone.
    Handler handler;
};

clsSubclass::~clsSubclass() {
    if (link_ && link_->window)
        RemoveWindowSubclass(link_->window, Procedure, reinterpret_cast<UINT_PTR>(link_.get()));
}

void clsSubclass::Attach(HWND control, Handler handler) {
    link_ = std::make_shared<Link>();
    link_->window = control;
    link_->handler = std::move(handler);
    // Its address is a number that no other subclass of the control has.
    SetWindowSubclass(control, Procedure, reinterpret_cast<UINT_PTR>(link_.get()),
                      reinterpret_cast<DWORD_PTR>(link_.get()));
}

LRESULT clsSubclass::PassOn(UINT message, WPARAM wparam, LPARAM lparam) const {
    return link_->window ? DefSubclassProc(link_->window, message, wparam, lparam) : 0;
}

LRESULT CALLBACK clsSubclass::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                        UINT_PTR id, DWORD_PTR data) {
    const std::shared_ptr<Link> link = reinterpret_cast<Link*>(data)->shared_from_this();
    if (message == WM_NCDESTROY) {
        link->window = nullptr;
        RemoveWindowSubclass(window, Procedure, id);
        return DefSubclassProc(window, message, wparam, lparam);
    }
    try {
        if (const auto answer = link->handler(message, wparam, lparam))
            return *answer;
    } catch (const std::exception& failure) {
        ShowFailure(window, failure);
        return 0;
    }
    return DefSubclassProc(window, message, wparam, lparam);
}

} // namespace vesk
