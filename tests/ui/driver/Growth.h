#pragma once

#include "WizardDriver.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace vesk::test {

using Place = std::array<LONG, 4>; // left, top, right, bottom

/// Where a window stands within its parent.
inline Place PlaceOf(HWND window) {
    RECT place = AreaOf(window);
    MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&place), 2);
    return {place.left, place.top, place.right, place.bottom};
}

inline void Resize(HWND window, LONG width, LONG height) {
    SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
}

/// By how much a control's edges move in a dialog that becomes 200 pixels wider and 100 higher.
struct Gain {
    int id;
    Place gained;
};

/// Makes a dialog larger, and then as small as it can be: that is what it was.
/// @param meanwhile what is looked at while it is larger
template <class Look>
void CheckGrows(HWND dialog, const std::vector<Gain>& gains, const Look& meanwhile) {
    const SIZE made = SizeOf(dialog);
    Resize(dialog, made.cx + 200, made.cy + 100);
    meanwhile();
    const auto placeOf = [&](int id) {
        const std::vector<HWND> controls = ControlsOf(dialog);
        return PlaceOf(*std::ranges::find(controls, id, GetDlgCtrlID));
    };
    std::vector<Place> grown;
    for (const Gain& gain : gains)
        grown.push_back(placeOf(gain.id));
    Resize(dialog, 100, 100);
    CHECK(SizeOf(dialog).cx == made.cx);
    CHECK(SizeOf(dialog).cy == made.cy);
    for (std::size_t i = 0; i < gains.size(); ++i) {
        const Place least = placeOf(gains[i].id);
        for (std::size_t edge = 0; edge < least.size(); ++edge)
            grown[i][edge] -= least[edge];
        CAPTURE(gains[i].id);
        CHECK(grown[i] == gains[i].gained);
    }
}

} // namespace vesk::test
