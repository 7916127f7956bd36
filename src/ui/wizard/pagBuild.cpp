#include "ui/wizard/pagBuild.h"

#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

#include <commctrl.h>

namespace vesk {

pagBuild::pagBuild(HWND wizard, const clsBuildLog& log, const std::string& programPath)
    : list_(log, programPath) {
    Create(wizard, IDD_PAGE_BUILD);
}

void pagBuild::SetStatus(const std::string& caption) {
    SetText(Control(IDC_LBL_FILE), caption);
    UpdateWindow(Control(IDC_LBL_FILE));
}

void pagBuild::SetProgress(std::size_t done, std::size_t total) {
    const HWND bar = Control(IDC_BAR_OVERALL);
    SendMessageA(bar, PBM_SETRANGE32, 0, static_cast<LPARAM>(total));
    SendMessageA(bar, PBM_SETPOS, done, 0);
}

/// The status says what the run came to an end with; what it came to is the heading's to say.
void pagBuild::ShowEnded() {
    SetText(Control(IDC_LABEL3), "Run:");
    list_.ShowFirstWarning();
}

void pagBuild::FocusLog() {
    SetFocus(Control(IDC_LST_PROGRESS));
}

void pagBuild::OnCreated() {
    list_.Attach(Control(IDC_LST_PROGRESS));
    layout_.Attach(Window());
    layout_.Follow(clsLayout::kGrowX, {IDC_LBL_FILE, IDC_BAR_OVERALL});
    layout_.Follow(clsLayout::kGrowX | clsLayout::kGrowY, {IDC_LST_PROGRESS});
}

INT_PTR pagBuild::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        return FALSE;
    case WM_SIZE:
        layout_.OnSize();
        return TRUE;
    case WM_CONTEXTMENU:
        if (reinterpret_cast<HWND>(wparam) != Control(IDC_LST_PROGRESS))
            return FALSE;
        list_.OpenMenu({static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))});
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace vesk
