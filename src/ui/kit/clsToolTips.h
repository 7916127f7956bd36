#pragma once

#include <windows.h>

namespace vesk {

/// The tool tips of a dialog's controls.
class clsToolTips {
public:
    /// To be called once, when the dialog is created; the tips go with it.
    void Attach(HWND dialog);

    /// Gives a control its tip. @param text stays the caller's and outlives the tips, or
    /// LPSTR_TEXTCALLBACKA: then the dialog is asked with TTN_GETDISPINFO each time
    void Add(int controlId, const char* text) const;

    /// Shows the tip of the control below the mouse now.
    void ShowNow() const;

    /// The system's window of the tips; null before Attach.
    [[nodiscard]] HWND Window() const { return tips_; }

private:
    HWND dialog_ = nullptr;
    HWND tips_ = nullptr;
};

} // namespace vesk
