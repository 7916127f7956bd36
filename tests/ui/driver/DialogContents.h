#pragma once

#include <windows.h>

#include <string>
#include <vector>

/// What the windows of any program show, and where they stand. Nothing here changes them.
namespace vesk::test {

inline constexpr const char* kDialogClass = "#32770";

/// The name of a window's class.
std::string ClassOf(HWND window);

/// A window's title or text.
std::string TextOf(HWND window);

/// The text of a control that is shown; what no user can read is "(not shown)".
std::string ShownTextOf(HWND control);

/// The same of a dialog's control.
inline std::string TextIn(HWND dialog, int id) {
    return ShownTextOf(GetDlgItem(dialog, id));
}

/// Where a window is on the screen; its size.
inline RECT AreaOf(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return area;
}
inline SIZE SizeOf(HWND window) {
    const RECT area = AreaOf(window);
    return {area.right - area.left, area.bottom - area.top};
}

/// The windows of a process that are shown, other than controls.
std::vector<HWND> TopWindowsOf(DWORD process);

/// All controls of a dialog, those of its pages included.
std::vector<HWND> ControlsOf(HWND dialog);

inline bool IsIn(const RECT& outer, const RECT& inner) {
    RECT common{};
    return IntersectRect(&common, &outer, &inner) && EqualRect(&common, &inner);
}

/// The lines of a combo box or list box.
std::vector<std::string> LinesOf(HWND list);

/// Whether a list view's line is ticked; what a cell of it shows.
bool IsTicked(HWND list, int line);
std::string CellText(HWND list, int line, int column);

/// In the first line of a list view, or in a button; from the upper left corner.
POINT FirstLineOf(HWND control);

/// A line for each control that a dialog shows: its text or lines, and what is unusual about it.
/// @param tabs controls whose place in this order is told as well
std::string ContentsOf(HWND dialog, const std::vector<HWND>& tabs = {});

/// Whether all that a dialog shows lies in its parent, and nothing over anything else.
inline bool IsTidy(HWND dialog) {
    return ContentsOf(dialog).find(", misplaced") == std::string::npos;
}

} // namespace vesk::test
