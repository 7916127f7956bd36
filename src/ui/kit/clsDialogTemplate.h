#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

namespace vesk {

/// A dialog of the program's resources, ready for the ...Indirect functions, in the font that the
/// user's system uses for its messages: dialog units, and with them every measure of the dialog,
/// follow that font and the screen's resolution. Where the dialog would then not fit on the
/// screen, the font is as much smaller as it takes. A page has the font of the dialog around it.
class clsDialogTemplate {
public:
    /// @param owner of the dialog, or the dialog that a page belongs to; may be null
    /// @throws Failure when there is no such dialog
    clsDialogTemplate(int resourceId, HWND owner);

    /// The template for the system, valid as long as this object.
    [[nodiscard]] LPCDLGTEMPLATEW Get() const {
        return reinterpret_cast<LPCDLGTEMPLATEW>(words_.data());
    }

    /// Size of the font in it.
    [[nodiscard]] int Points() const { return points_; }

private:
    int points_ = 0;
    std::vector<std::uint32_t> words_; ///< The system wants a template aligned to four bytes.
};

} // namespace vesk
