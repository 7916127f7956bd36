#include "ui/wizard/clsPageHeading.h"

#include "base/Version.h"
#include "ui/kit/clsDialogScale.h"
#include "ui/kit/modBand.h"
#include "ui/resources/ids.h"

namespace vesk {

clsPageHeading::clsPageHeading() : logo_(IDR_LOGO), logoSmall_(IDR_LOGO_SMALL) {}

void clsPageHeading::Attach(HWND wizard) {
    wizard_ = wizard;
    MakeFonts();
    SendMessageA(Control(IDC_LBL_HEADING_SM), WM_SETFONT, reinterpret_cast<WPARAM>(boldFont_.Get()),
                 FALSE);
}

void clsPageHeading::MakeFonts() {
    largeFont_ = DerivedFont(FontOf(wizard_), FW_BOLD, 145);
    boldFont_ = DerivedFont(FontOf(wizard_), FW_BOLD, 100);
}

RECT clsPageHeading::DialogUnits(int left, int top, int width, int height) const {
    RECT area{left, top, left + width, top + height};
    MapUnits(wizard_, area);
    return area;
}

void clsPageHeading::ShowControl(int id, bool shown) const {
    ShowWindow(Control(id), shown ? SW_SHOW : SW_HIDE);
}

void clsPageHeading::Show(Page page) {
    page_ = page;
    const bool welcome = page == Page::Welcome;
    const bool build = page == Page::Build;
    const HWND heading = Control(IDC_LBL_HEADING);
    const RECT area = welcome ? DialogUnits(122, 12, 244, 24) : DialogUnits(11, 6, 300, 10);
    const GdiHandle& font = welcome ? largeFont_ : boldFont_;
    SendMessageA(heading, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), FALSE);
    SetWindowPos(heading, nullptr, area.left, area.top, area.right - area.left,
                 area.bottom - area.top, SWP_NOZORDER | SWP_NOACTIVATE);
    SetText(build ? Control(IDC_LBL_HEADING_SM) : heading, PageHeading(page, kVersionText));
    SetText(Control(build ? IDC_LBL_HEADING_SM2 : IDC_LBL_SUBHEADING), PageSubheading(page));

    ShowControl(IDC_IMG_LOGO, welcome);
    ShowControl(IDC_LBL_HEADING, !build);
    ShowControl(IDC_LBL_SUBHEADING, !welcome && !build);
    ShowControl(IDC_IMG_LOGO_SMALL, !welcome);
    ShowControl(IDC_LINE_TOP, !welcome);
    ShowControl(IDC_LBL_HEADING_SM, build);
    ShowControl(IDC_LBL_HEADING_SM2, build);
}

void clsPageHeading::ShowEnding(const EndingHeading& ending) const {
    SetText(Control(IDC_LBL_HEADING_SM), ending.title);
    SetText(Control(IDC_LBL_HEADING_SM2), ending.sentence);
}

/// The welcome page is white down to the line above the buttons.
LRESULT clsPageHeading::PaintBackground(HDC dc) const {
    return page_ == Page::Welcome ? PaintBandTo(wizard_, dc, AreaOf(Control(IDC_LINE_BOTTOM)).top)
                                  : PaintBand(wizard_, dc, kBandHeight);
}

INT_PTR clsPageHeading::ColourOf(HDC dc, HWND control) {
    const int id = GetDlgCtrlID(control);
    if (id < IDC_LBL_HEADING || id > IDC_LBL_HEADING_SM2)
        return FALSE;
    return OnWhite(dc);
}

void clsPageHeading::DrawPicture(const DRAWITEMSTRUCT& item) {
    if (item.CtlID == IDC_IMG_LOGO)
        logo_.Paint(item.hDC, item.rcItem);
    else
        logoSmall_.PaintOnWhite(item.hDC, item.rcItem);
}

} // namespace vesk
