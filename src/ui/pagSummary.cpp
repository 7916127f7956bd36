#include "ui/pagSummary.h"

#include "ui/modWindow.h"
#include "ui/resources/ids.h"

namespace vesk {

pagSummary::pagSummary(HWND wizard) {
    Create(wizard, IDD_PAGE_SUMMARY);
}

void pagSummary::SetSummary(const std::string& text) {
    SetText(Control(IDC_TXT_SUMMARY), text);
    SendMessageA(Control(IDC_TXT_SUMMARY), EM_SETSEL, 0, 0);
}

INT_PTR pagSummary::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    if (message != WM_CTLCOLORSTATIC || reinterpret_cast<HWND>(lparam) != Control(IDC_TXT_SUMMARY))
        return FALSE;
    // Text to be read, not a field that happens to be locked.
    SetTextColor(reinterpret_cast<HDC>(wparam), GetSysColor(COLOR_WINDOWTEXT));
    SetBkColor(reinterpret_cast<HDC>(wparam), GetSysColor(COLOR_WINDOW));
    return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_WINDOW));
}

} // namespace vesk
