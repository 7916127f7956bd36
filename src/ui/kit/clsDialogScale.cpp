#include "ui/kit/clsDialogScale.h"

#include "base/modSystemLibrary.h"
#include "ui/kit/modResolution.h"

#include <cstdlib>
#include <map>
#include <string_view>
#include <utility>

namespace vesk {

namespace {

constexpr const char* kProperty = "VeskDialogScale"; // of a window: its object

/// From Windows 10 on the system would scale dialogs as well, by its own rules.
void KeepSystemFromScaling(HWND dialog) {
    using SetBehavior = BOOL(WINAPI*)(HWND, int, int);
    constexpr int kDisableAll = 1; // DDC_DISABLE_ALL
    if (const auto set = SystemFunction<SetBehavior>("user32.dll", "SetDialogDpiChangeBehavior"))
        set(dialog, kDisableAll, kDisableAll);
}

LONG HeightOf(HFONT font) {
    LOGFONTA description{};
    GetObjectA(font, sizeof description, &description);
    return std::abs(description.lfHeight);
}

bool IsOfClass(HWND window, std::string_view name) {
    char found[32]{};
    GetClassNameA(window, found, sizeof found);
    return lstrcmpiA(found, name.data()) == 0;
}

BOOL CALLBACK Gather(HWND window, LPARAM windows) {
    reinterpret_cast<std::vector<HWND>*>(windows)->push_back(window);
    return TRUE;
}

} // namespace

/// Fonts in their new size, each made once.
class clsDialogScale::ScaledFonts {
public:
    ScaledFonts(int from, int to) : from_(from), to_(to) {}

    [[nodiscard]] int Scaled(LONG pixels) const {
        return MulDiv(static_cast<int>(pixels), to_, from_);
    }

    HFONT Scaled(HFONT font) {
        GdiHandle& made = made_[font];
        if (!made) {
            LOGFONTW description{};
            GetObjectW(font, sizeof description, &description);
            description.lfHeight = Scaled(description.lfHeight);
            description.lfWidth = 0;
            made.Reset(CreateFontIndirectW(&description));
        }
        return static_cast<HFONT>(made.Get());
    }

    [[nodiscard]] std::vector<GdiHandle> Take() {
        std::vector<GdiHandle> fonts;
        fonts.reserve(made_.size());
        for (auto& [font, made] : made_)
            fonts.push_back(std::move(made));
        return fonts;
    }

private:
    int from_, to_;
    std::map<HFONT, GdiHandle> made_;
};

/// A control as it stands before.
struct clsDialogScale::Change {
    HWND control;
    RECT area;
    HFONT font = nullptr;
    LONG openHeight = 0; ///< Of a combo box with its list, which it would lose otherwise.
    LRESULT extent = 0;  ///< That a list box can be scrolled over.
};

void clsDialogScale::Attach(HWND dialog, int points) {
    dialog_ = dialog;
    font_ = reinterpret_cast<HFONT>(SendMessageA(dialog, WM_GETFONT, 0, 0));
    // Which resolution the system took for the template's points is seen by what came out.
    const int wanted = DpiOfWindow(dialog);
    const auto distance = [&](int dpi) {
        return std::abs(static_cast<int>(HeightOf(font_)) - MulDiv(points, dpi, 72));
    };
    madeFor_ = distance(wanted) <= distance(SystemDpi()) ? wanted : SystemDpi();
    dpi_ = madeFor_;
    RECT unit{0, 0, 4, 8};
    MapDialogRect(dialog, &unit);
    unit_ = {unit.right, unit.bottom};
    SetPropA(dialog, kProperty, this);
    KeepSystemFromScaling(dialog);
}

void clsDialogScale::Detach() {
    if (dialog_)
        RemovePropA(dialog_, kProperty);
    dialog_ = nullptr;
}

clsDialogScale* clsDialogScale::Of(HWND dialog) {
    return static_cast<clsDialogScale*>(GetPropA(dialog, kProperty));
}

void clsDialogScale::MapUnits(RECT& area) const {
    const auto map = [&](LONG units, LONG unit, int parts) {
        return MulDiv(MulDiv(static_cast<int>(units), static_cast<int>(unit), parts), dpi_,
                      madeFor_);
    };
    area = {map(area.left, unit_.cx, 4), map(area.top, unit_.cy, 8), map(area.right, unit_.cx, 4),
            map(area.bottom, unit_.cy, 8)};
}

/// Direct children of the dialog and of its pages: what is in them is theirs.
std::vector<clsDialogScale::Change>
clsDialogScale::ControlsToChange(std::vector<clsDialogScale*>& pages) const {
    std::vector<HWND> windows;
    EnumChildWindows(dialog_, Gather, reinterpret_cast<LPARAM>(&windows));
    std::vector<Change> changes;
    for (const HWND window : windows) {
        if (!Of(GetParent(window)))
            continue;
        Change change{window, AreaOf(window)};
        if (auto* const page = Of(window))
            pages.push_back(page);
        else
            change.font = reinterpret_cast<HFONT>(SendMessageA(window, WM_GETFONT, 0, 0));
        if (IsOfClass(window, "ComboBox")) {
            RECT dropped{};
            SendMessageA(window, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&dropped));
            change.openHeight = dropped.bottom - dropped.top;
        }
        if (IsOfClass(window, "ListBox"))
            change.extent = SendMessageA(window, LB_GETHORIZONTALEXTENT, 0, 0);
        changes.push_back(change);
    }
    return changes;
}

void clsDialogScale::Apply(const Change& change, ScaledFonts& fonts) {
    if (change.font)
        SendMessageA(change.control, WM_SETFONT,
                     reinterpret_cast<WPARAM>(fonts.Scaled(change.font)), FALSE);
    if (change.extent > 0)
        SendMessageA(change.control, LB_SETHORIZONTALEXTENT,
                     static_cast<WPARAM>(fonts.Scaled(static_cast<LONG>(change.extent))), 0);
    const int left = fonts.Scaled(change.area.left);
    const int top = fonts.Scaled(change.area.top);
    const int height = fonts.Scaled(change.area.bottom) - top;
    SetWindowPos(change.control, nullptr, left, top, fonts.Scaled(change.area.right) - left,
                 change.openHeight > 0 ? fonts.Scaled(change.openHeight) : height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    if (change.openHeight > 0)
        SetClosedHeight(change.control, height);
}

void clsDialogScale::ChangeTo(int dpi, const RECT& place) {
    std::vector<clsDialogScale*> dialogs;
    const std::vector<Change> changes = ControlsToChange(dialogs);
    ScaledFonts fonts(dpi_, dpi);
    dialogs.push_back(this);
    for (clsDialogScale* dialog : dialogs) {
        dialog->dpi_ = dpi;
        dialog->font_ = fonts.Scaled(dialog->font_);
    }
    for (const Change& change : changes)
        Apply(change, fonts);
    const std::vector<GdiHandle> unused = std::exchange(fonts_, fonts.Take());
    SetWindowPos(dialog_, nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    // Also where the size is the same: layouts and columns are to see the new resolution.
    for (const clsDialogScale* dialog : dialogs) {
        const SIZE inside = InnerSize(dialog->dialog_);
        SendMessageA(dialog->dialog_, WM_SIZE, SIZE_RESTORED, MAKELPARAM(inside.cx, inside.cy));
    }
    RedrawWindow(dialog_, nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

} // namespace vesk
