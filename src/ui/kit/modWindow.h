#pragma once

#include "base/UniqueHandle.h"

#include <windows.h>

#include <exception>
#include <string>
#include <vector>

/// Small helpers for windows, dialogs and their controls.
namespace vesk {

/// Owners of what GDI and menus hand out.
using GdiHandle = UniqueHandle<::DeleteObject, HGDIOBJ>;
using DeviceContext = UniqueHandle<::DeleteDC, HDC>;
using MenuHandle = UniqueHandle<::DestroyMenu, HMENU>;

/// The program's instance, whose resources the windows use.
HINSTANCE ProgramInstance();

/// Text of a window or control, whatever its length. A letter that the code page lacks becomes a
/// "?", because a similar letter would make another name, and no name has a "?".
std::string TextOf(HWND window);

/// The same text as it is.
std::wstring WideTextOf(HWND window);

/// True when the text has letters that TextOf cannot give.
bool HoldsForeignLetters(HWND window);

/// Turns letters of an edit field that the code page lacks into a "?" each, with a beep: what is
/// shown is then what is read.
void ReplaceForeignLetters(HWND field);

/// Sets the text only when it differs, so that nothing flickers.
void SetText(HWND window, const std::string& text);

/// Keeps the window in front of all others, or ends that; position and size stay.
void SetTopMost(HWND window, bool onTop);

/// Gives a window the program's icon in both sizes.
void SetWindowIcon(HWND window);

/// The size of a window's inside.
SIZE InnerSize(HWND window);

/// Where a control is in its dialog's client area.
RECT AreaOf(HWND control);

/// The room that programs have on the monitor of a window; on the main one for null.
RECT WorkAreaOf(HWND window);

/// Centres a window over its owner, or on the work area when it has none or a hidden one, and
/// keeps it on the monitor.
void CenterWindow(HWND window);

/// Handles one message: dialogs get their keyboard navigation, the rest is dispatched. A key that
/// is held down presses one button only, and not that of what the first one has brought up.
void DispatchForDialogs(MSG& message);

/// Handles every message that waits now. A request to end the program is put back for the main
/// loop.
void RunPendingEvents();

/// For a page within a dialog, to be called at BN_SETFOCUS and BN_KILLFOCUS: makes the page's
/// button that has the keyboard the default one, and the dialog's own button again when it goes.
/// The system looks for both among the dialog's direct children only.
void FollowFocus(HWND button, int notification, int defaultId);

/// Shows the user a failure that nobody else handles, in a box over a window's dialog.
void ShowFailure(HWND window, const std::exception& failure);

/// A message box; long words in it are broken. @return the button, IDOK ...
int ShowMessage(HWND owner, const std::string& text, const std::string& title, UINT style);

/// Pixels that a line of text takes in a control's font.
SIZE TextSize(HWND control, const std::string& text);

/// Its width alone.
inline int TextWidth(HWND control, const std::string& text) {
    return static_cast<int>(TextSize(control, text).cx);
}

/// Pixels in height that a text takes in a control's font, with its lines broken at a width.
int WrappedHeight(HWND control, const std::string& text, int width);

/// Pixels that the columns of a list view have together; room is kept for the scroll bar that its
/// lines will need.
int RoomForColumns(HWND list);

/// Replaces the items of a combo box; none of them is selected then.
void SetComboItems(HWND combo, const std::vector<std::string>& items);

/// Number of a combo box's selected item; -1 for none.
int ComboSelection(HWND combo);

/// Selects an item by its number; -1 selects none.
void SetComboSelection(HWND combo, int item);

/// Gives a closed combo box this height.
void SetClosedHeight(HWND combo, LONG pixels);

/// Makes a combo box as high as a text field: the system makes it as high as its font needs, which
/// at high resolutions is less.
void MatchHeight(HWND combo, HWND textField);

/// Draws what is to be drawn while something takes long; keys and clicks wait for its end.
void LetWindowsPaint();

/// Forgets the keys and clicks that wait: they were not meant for what is shown next.
void DiscardInput();

/// Draws a window with its controls at once, and forgets the keys and clicks of before, which
/// nobody made with what it shows in view.
void PaintBeforeInput(HWND window);

/// A copy of the font with another weight, and a size as a percentage of the font's own.
GdiHandle DerivedFont(HFONT font, LONG weight, int percent);

/// A copy of the font in another face.
GdiHandle FontInFace(HFONT font, const std::string& face);

} // namespace vesk
