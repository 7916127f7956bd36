#pragma once

#include "ui/kit/modWindow.h"

#include <windows.h>

#include <vector>

namespace vesk {

/// The resolution that a dialog is laid out for. When its window comes to a monitor of another one,
/// its fonts, its controls and those of its pages are scaled to that; layouts and measures that ask
/// for the resolution follow by themselves. Systems that tell programs of no other resolution than
/// the main monitor's (before Windows 10) enlarge the picture of the window instead.
class clsDialogScale {
public:
    clsDialogScale() = default;
    clsDialogScale(const clsDialogScale&) = delete;
    clsDialogScale& operator=(const clsDialogScale&) = delete;
    ~clsDialogScale() { Detach(); }

    /// To be called when the dialog is made, before its own code.
    /// @param points size of the font in its template
    void Attach(HWND dialog, int points);

    /// To be called when the window goes; the object may then be attached again.
    void Detach();

    /// Lays out for another resolution. @param place of the window on the screen, as the system
    /// suggests it
    void ChangeTo(int dpi, const RECT& place);

    /// The resolution in dots per inch; 96 is the usual one.
    [[nodiscard]] int Dpi() const { return dpi_; }

    /// The dialog's font, scaled; for fonts that are derived from it. Stays the kit's or the
    /// system's, and is gone when the resolution changes.
    [[nodiscard]] HFONT Font() const { return font_; }

    /// Turns dialog units into pixels.
    void MapUnits(RECT& area) const;

    /// That of a dialog of the kit; null for other windows.
    static clsDialogScale* Of(HWND dialog);

private:
    struct Change;
    class ScaledFonts;

    [[nodiscard]] std::vector<Change> ControlsToChange(std::vector<clsDialogScale*>& pages) const;
    static void Apply(const Change& change, ScaledFonts& fonts);

    HWND dialog_ = nullptr;
    HFONT font_ = nullptr;
    int madeFor_ = 96;
    int dpi_ = 96;
    SIZE unit_{}; ///< Pixels of 4 units across and 8 down, in the first resolution.
    std::vector<GdiHandle> fonts_;
};

/// Turns dialog units of a dialog into pixels of the resolution that it is laid out for.
inline void MapUnits(HWND dialog, RECT& area) {
    clsDialogScale::Of(dialog)->MapUnits(area);
}

/// The font of a dialog in the resolution that it is laid out for.
inline HFONT FontOf(HWND dialog) {
    return clsDialogScale::Of(dialog)->Font();
}

} // namespace vesk
