#pragma once

#include <windows.h>

namespace vesk {

/// Shows the mouse pointer of a busy program for the length of a scope.
class clsWaitCursor {
public:
    /// Shows it until the end of the scope, which brings the one of before back.
    clsWaitCursor() : before_(SetCursor(LoadCursorA(nullptr, IDC_WAIT))) {}
    clsWaitCursor(const clsWaitCursor&) = delete;
    clsWaitCursor& operator=(const clsWaitCursor&) = delete;
    ~clsWaitCursor() { SetCursor(before_); }

private:
    HCURSOR before_;
};

} // namespace vesk
