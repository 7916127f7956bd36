#include "KitWindow.h"

#include "ui/kit/clsLayout.h"

#include <array>

using namespace vesk;
using namespace vesk::test;

TEST_CASE("a control moves and grows with its dialog as it was told, and never shrinks") {
    struct Row {
        unsigned follows;
        RECT grown; // in a dialog that is 40 wider and 30 higher
    };
    constexpr RECT kFirst{10, 20, 60, 50};
    for (const Row& row : {
             Row{0, kFirst},
             Row{clsLayout::kMoveX, {50, 20, 100, 50}},
             Row{clsLayout::kMoveY, {10, 50, 60, 80}},
             Row{clsLayout::kGrowX | clsLayout::kMoveY, {10, 50, 100, 80}},
             Row{clsLayout::kGrowX | clsLayout::kGrowY, {10, 20, 100, 80}},
         }) {
        CAPTURE(row.follows);
        const WindowHandle dialog(MakeWindow("STATIC", nullptr, 200, 100));
        const HWND control = MakeWindow("STATIC", dialog.Get(), 50, 30);
        MoveWindow(control, 10, 20, 50, 30, FALSE);
        clsLayout layout;
        layout.Attach(dialog.Get());
        layout.Add(control, row.follows);
        const auto areaAt = [&](int width, int height) {
            SetWindowPos(dialog.Get(), nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
            CHECK(layout.Handle(WM_SIZE, 0));
            RECT area{};
            GetWindowRect(control, &area);
            MapWindowPoints(nullptr, dialog.Get(), reinterpret_cast<POINT*>(&area), 2);
            return std::array<LONG, 4>{area.left, area.top, area.right, area.bottom};
        };
        const auto as = [](const RECT& area) {
            return std::array<LONG, 4>{area.left, area.top, area.right, area.bottom};
        };
        CHECK(areaAt(240, 130) == as(row.grown));
        CHECK(areaAt(100, 50) == as(kFirst));
    }
}
