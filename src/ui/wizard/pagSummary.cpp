#include "ui/wizard/pagSummary.h"

#include "ui/kit/modBand.h"
#include "ui/kit/modReadOnlyText.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

#include <algorithm>

namespace vesk {

namespace {

void Place(HWND control, const RECT& area) {
    SetWindowPos(control, nullptr, area.left, area.top, area.right - area.left,
                 area.bottom - area.top, SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace

pagSummary::pagSummary(HWND wizard) {
    Create(wizard, IDD_PAGE_SUMMARY);
}

void pagSummary::OnCreated() {
    MakePlainText(text_, Control(IDC_TXT_SUMMARY));
    SendMessageA(Control(IDC_IMG_FOREIGN), STM_SETICON,
                 reinterpret_cast<WPARAM>(LoadIconA(nullptr, IDI_WARNING)), 0);
}

void pagSummary::SetSummary(const std::string& text) {
    SetText(Control(IDC_TXT_SUMMARY), text);
    SendMessageA(Control(IDC_TXT_SUMMARY), EM_SETSEL, 0, 0);
}

void pagSummary::SetWarning(const std::string& text) {
    warning_ = text;
    SetText(Control(IDC_LBL_FOREIGN), text);
    for (const int id : {IDC_LBL_FOREIGN, IDC_IMG_FOREIGN})
        ShowWindow(Control(id), text.empty() ? SW_HIDE : SW_SHOW);
    Arrange();
}

RECT pagSummary::DialogUnits(int left, int top, int right, int bottom) const {
    RECT area{left, top, right, bottom};
    MapUnits(Window(), area);
    return area;
}

/// The summary has the room that the warning leaves.
void pagSummary::Arrange() const {
    const SIZE client = InnerSize(Window());
    const RECT margin = DialogUnits(0, 0, 11, 5);
    RECT warning = DialogUnits(40, 5, 0, 31);
    RECT label = DialogUnits(11, 7, 0, 16);
    RECT text = DialogUnits(11, 18, 0, 0);
    warning.right = label.right = text.right = client.cx - margin.right;
    if (!warning_.empty()) {
        const HWND control = Control(IDC_LBL_FOREIGN);
        const LONG needed = WrappedHeight(control, warning_, warning.right - warning.left);
        warning.bottom = std::max(warning.bottom, std::min(warning.top + needed, client.cy / 2));
        const LONG shift = warning.bottom - DialogUnits(0, 0, 0, 2).bottom;
        OffsetRect(&label, 0, shift);
        OffsetRect(&text, 0, shift);
    }
    text.bottom = client.cy - margin.bottom;
    Place(Control(IDC_LBL_FOREIGN), warning);
    Place(Control(IDC_LBL_SUMMARY), label);
    Place(Control(IDC_TXT_SUMMARY), text);
    RedrawWindow(Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

INT_PTR pagSummary::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        return FALSE;
    case WM_SIZE:
        Arrange();
        return TRUE;
    case WM_CTLCOLORSTATIC:
        // Text to be read, not a field that happens to be locked.
        return reinterpret_cast<HWND>(lparam) == Control(IDC_TXT_SUMMARY)
                   ? OnWhite(reinterpret_cast<HDC>(wparam))
                   : FALSE;
    default:
        return FALSE;
    }
}

} // namespace vesk
