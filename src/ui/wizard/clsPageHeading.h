#pragma once

#include "ui/kit/clsPictureView.h"
#include "ui/kit/modWindow.h"
#include "ui/wizard/modNavigation.h"

#include <windows.h>

namespace vesk {

/// What stands around the wizard's pages and changes with them: headings, pictures, the line and
/// the white below them.
class clsPageHeading {
public:
    /// For one wizard; Attach comes first.
    clsPageHeading();

    /// @param wizard the dialog whose controls these are
    void Attach(HWND wizard);

    /// Derives the headings' fonts from the wizard's; also after its resolution has changed, for
    /// the next page's heading.
    void MakeFonts();

    /// Shows the headings and pictures of a page.
    void Show(Page page);

    /// Shows on the build page how a build has ended.
    void ShowEnding(const EndingHeading& ending) const;

    /// Answers to WM_ERASEBKGND, WM_CTLCOLORSTATIC (null for controls that are not these) and
    /// WM_DRAWITEM.
    [[nodiscard]] LRESULT PaintBackground(HDC dc) const;
    [[nodiscard]] static INT_PTR ColourOf(HDC dc, HWND control);
    void DrawPicture(const DRAWITEMSTRUCT& item);

private:
    [[nodiscard]] HWND Control(int id) const { return GetDlgItem(wizard_, id); }
    [[nodiscard]] RECT DialogUnits(int left, int top, int width, int height) const;
    void ShowControl(int id, bool shown) const;

    HWND wizard_ = nullptr;
    Page page_ = Page::Welcome;
    clsPictureView logo_;
    clsPictureView logoSmall_;
    GdiHandle largeFont_;
    GdiHandle boldFont_;
};

} // namespace vesk
