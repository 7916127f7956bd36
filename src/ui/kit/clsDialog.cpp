#include "ui/kit/clsDialog.h"

#include "base/modSystemError.h"
#include "ui/kit/clsDialogTemplate.h"
#include "ui/kit/modResolution.h"
#include "ui/kit/modTitleBar.h"
#include "ui/kit/modWindow.h"

#include <exception>
#include <string>

namespace vesk {

clsDialog::~clsDialog() {
    if (!window_)
        return;
    // The derived part is gone: the window must not call back into it while it is destroyed.
    SetWindowLongPtrA(window_, DWLP_USER, 0);
    DestroyWindow(window_);
}

void clsDialog::Create(HWND owner, int resourceId) {
    const clsDialogTemplate dialog(resourceId, owner);
    points_ = dialog.Points();
    if (!CreateDialogIndirectParamW(ProgramInstance(), dialog.Get(), owner, Procedure,
                                    reinterpret_cast<LPARAM>(this)))
        ThrowLastError("cannot create dialog", std::to_string(resourceId));
    if (window_ && (GetWindowLongPtrA(window_, GWL_STYLE) & WS_CHILD) != 0)
        FollowOwner(owner);
}

INT_PTR clsDialog::RunModal(HWND owner, int resourceId) {
    const clsDialogTemplate dialog(resourceId, owner);
    points_ = dialog.Points();
    const INT_PTR result = DialogBoxIndirectParamW(ProgramInstance(), dialog.Get(), owner,
                                                   Procedure, reinterpret_cast<LPARAM>(this));
    if (result == -1)
        ThrowLastError("cannot show dialog", std::to_string(resourceId));
    return result;
}

INT_PTR clsDialog::Answer(LRESULT result) const {
    SetWindowLongPtrA(window_, DWLP_MSGRESULT, result);
    return TRUE;
}

INT_PTR clsDialog::Answer(std::optional<LRESULT> result) const {
    return result ? Answer(*result) : FALSE;
}

INT_PTR CALLBACK clsDialog::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_NOTIFYFORMAT) {
        // Asked by controls while they are made: the program speaks the code page.
        SetWindowLongPtrA(window, DWLP_MSGRESULT, NFR_ANSI);
        return TRUE;
    }
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(window, DWLP_USER, lparam);
        auto* const made = reinterpret_cast<clsDialog*>(lparam);
        made->window_ = window;
        made->scale_.Attach(window, made->points_);
        if ((GetWindowLongPtrA(window, GWL_STYLE) & WS_CHILD) == 0)
            FollowDarkMode(window);
    }
    auto* self = reinterpret_cast<clsDialog*>(GetWindowLongPtrA(window, DWLP_USER));
    if (!self)
        return FALSE; // before WM_INITDIALOG, or the object is gone
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrA(window, DWLP_USER, 0);
        self->window_ = nullptr;
        self->scale_.Detach();
        return FALSE;
    }
    return self->HandleSafely(message, wparam, lparam);
}

/// A page is made for the monitor that the system counts it to, which may be another than its
/// dialog's.
void clsDialog::FollowOwner(HWND owner) {
    const int dpi = DpiOf(owner);
    if (dpi == scale_.Dpi())
        return;
    RECT area = AreaOf(window_);
    for (LONG* edge : {&area.left, &area.top, &area.right, &area.bottom})
        *edge = MulDiv(static_cast<int>(*edge), dpi, scale_.Dpi());
    ScaleTo(dpi, area);
}

void clsDialog::ScaleTo(int dpi, const RECT& place) {
    scale_.ChangeTo(dpi, place);
    Scaled();
}

INT_PTR clsDialog::HandleSafely(UINT message, WPARAM wparam, LPARAM lparam) {
    constexpr UINT kDpiChanged = 0x02E0; // WM_DPICHANGED
    const HWND window = window_;
    try {
        if (message == kDpiChanged) {
            ScaleTo(LOWORD(wparam), *reinterpret_cast<const RECT*>(lparam));
            return Answer(0);
        }
        return Handle(message, wparam, lparam);
    } catch (const std::exception& failure) {
        ShowFailure(window, failure); // `this` may be gone by now
        return FALSE;
    }
}

} // namespace vesk
