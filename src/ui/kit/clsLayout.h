#pragma once

#include <windows.h>

#include <initializer_list>
#include <vector>

namespace vesk {

/// Lets the controls of a dialog follow its size.
class clsLayout {
public:
    /// What a control does with the room that its dialog gains; to be combined.
    enum : unsigned { kMoveX = 1, kMoveY = 2, kGrowX = 4, kGrowY = 8 };

    /// Takes the dialog's size now as the one that its template gives it, and as its smallest.
    void Attach(HWND dialog);

    /// Adds a control, or a page, as it stands while the dialog has that size.
    /// @param follows of the values above
    void Add(HWND control, unsigned follows);

    /// Adds controls by their numbers in the dialog.
    void Follow(unsigned how, std::initializer_list<int> ids);

    /// Puts every control in its place; for WM_SIZE.
    void OnSize() const;

    /// Does both when a message asks for it. @return true when it was one of the two
    bool Handle(UINT message, LPARAM lparam) const;

    /// Keeps the dialog from becoming smaller than it was made; for WM_GETMINMAXINFO.
    void LimitSize(MINMAXINFO& info) const;

private:
    [[nodiscard]] int Scaled(LONG pixels) const;

    struct Item {
        HWND control;
        RECT area; ///< In the dialog's client coordinates, while that has its first size.
        unsigned follows;
    };

    HWND dialog_ = nullptr;
    int dpi_ = 96; ///< That all measures here are for.
    SIZE client_{};
    SIZE window_{};
    std::vector<Item> items_;
};

} // namespace vesk
