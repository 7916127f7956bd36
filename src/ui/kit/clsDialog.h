#pragma once

#include "ui/kit/clsDialogScale.h"

#include <windows.h>

#include <optional>

namespace vesk {

/// A dialog, modal or modeless, or a page within one. The object owns the window and may outlive
/// it. Its text fields take any letter, also one that the code page lacks (see TextOf).
/// A handler may destroy the window; the object has to outlive its handlers, so a dialog must not
/// be a member of what its handlers destroy. No failure in a handler leaves the window procedure:
/// it is shown to the user there.
class clsDialog {
public:
    clsDialog() = default;
    clsDialog(const clsDialog&) = delete;
    clsDialog& operator=(const clsDialog&) = delete;
    virtual ~clsDialog();

    /// Creates the window hidden or shown, as its template says. @throws Failure
    void Create(HWND owner, int resourceId);

    /// Shows the dialog until it is closed with EndDialog. @return what EndDialog was given
    /// @throws Failure
    INT_PTR RunModal(HWND owner, int resourceId);

    /// The window; null before it is created and after it is gone.
    [[nodiscard]] HWND Window() const { return window_; }

    /// A control by its number; null when there is none.
    [[nodiscard]] HWND Control(int id) const { return GetDlgItem(window_, id); }

protected:
    /// Handles a message. @return as a dialog procedure does; see Answer for the others
    virtual INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) = 0;

    /// For messages whose result is not the dialog procedure's own.
    [[nodiscard]] INT_PTR Answer(LRESULT result) const;

    /// The same where there may be nothing to answer.
    [[nodiscard]] INT_PTR Answer(std::optional<LRESULT> result) const;

    /// Told after everything was scaled to a monitor of another resolution: what the dialog has
    /// derived from its font is to be made anew.
    virtual void Scaled() {}

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

    INT_PTR HandleSafely(UINT message, WPARAM wparam, LPARAM lparam);

    void FollowOwner(HWND owner);
    void ScaleTo(int dpi, const RECT& place);

    HWND window_ = nullptr;
    int points_ = 0; ///< Of its template's font.
    clsDialogScale scale_;
};

} // namespace vesk
