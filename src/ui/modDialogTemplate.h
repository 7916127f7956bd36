#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

namespace vesk {

/// A dialog of the program's resources, ready for the ...Indirect functions, in the font that the
/// user's system uses for its messages: dialog units, and with them every measure of the dialog,
/// follow that font and the screen's resolution.
class DialogTemplate {
public:
    /// @throws Failure when there is no such dialog
    explicit DialogTemplate(int resourceId);

    [[nodiscard]] LPCDLGTEMPLATEA Get() const {
        return reinterpret_cast<LPCDLGTEMPLATEA>(words_.data());
    }

private:
    std::vector<std::uint32_t> words_; ///< The system wants a template aligned to four bytes.
};

} // namespace vesk
