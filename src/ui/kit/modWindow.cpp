#include "ui/kit/modWindow.h"

#include "base/modSystemError.h"
#include "base/modWide.h"
#include "ui/kit/modBoxText.h"
#include "ui/kit/modResolution.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace vesk {

namespace {

constexpr int kProgramIcon = 1; // the lowest number: the one that the system shows for the file
constexpr ULONG_PTR kDialogClassAtom = 0x8002; // the system's own class of dialogs, "#32770"

bool IsDialogWindow(HWND window) {
    return GetClassLongPtrA(window, GCW_ATOM) == kDialogClassAtom;
}

LONG HeightOf(const RECT& area) {
    return area.bottom - area.top;
}

/// Enter, or the letter of a button, from a key that is held down. Whoever takes letters gets them
/// all.
bool IsRepeatedPress(const MSG& message) {
    constexpr LPARAM kWasDown = LPARAM{1} << 30;
    if ((message.lParam & kWasDown) == 0)
        return false;
    switch (message.message) {
    case WM_KEYDOWN:
        return message.wParam == VK_RETURN;
    case WM_SYSCHAR:
        return true;
    case WM_CHAR:
        return (SendMessageA(message.hwnd, WM_GETDLGCODE, 0, 0) & DLGC_WANTCHARS) == 0;
    default:
        return false;
    }
}

LOGFONTA DescribeFont(HFONT font) {
    LOGFONTA description{};
    GetObjectA(font, sizeof description, &description);
    return description;
}

} // namespace

HINSTANCE ProgramInstance() {
    return GetModuleHandleA(nullptr);
}

std::wstring WideTextOf(HWND window) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string TextOf(HWND window) {
    const std::wstring wide = WideTextOf(window);
    if (const auto exact = NarrowedExactly(wide))
        return *exact;
    std::string text;
    for (const wchar_t c : wide)
        text += NarrowedExactly({&c, 1}).value_or("?");
    return text;
}

bool HoldsForeignLetters(HWND window) {
    return !NarrowedExactly(WideTextOf(window)).has_value();
}

void SetText(HWND window, const std::string& text) {
    if (TextOf(window) != text)
        SetWindowTextA(window, text.c_str());
}

void SetTopMost(HWND window, bool onTop) {
    SetWindowPos(window, onTop ? HWND_TOPMOST : HWND_NOTOPMOST, 0, 0, 0, 0,
                 SWP_NOSIZE | SWP_NOMOVE);
}

void SetWindowIcon(HWND window) {
    const auto setIcon = [&](WPARAM kind, int widthMetric, int heightMetric) {
        // Shared: the system keeps one copy for all windows and frees it itself.
        const HANDLE icon =
            LoadImageA(ProgramInstance(), MAKEINTRESOURCEA(kProgramIcon), IMAGE_ICON,
                       GetSystemMetrics(widthMetric), GetSystemMetrics(heightMetric), LR_SHARED);
        SendMessageA(window, WM_SETICON, kind, reinterpret_cast<LPARAM>(icon));
    };
    setIcon(ICON_BIG, SM_CXICON, SM_CYICON);
    setIcon(ICON_SMALL, SM_CXSMICON, SM_CYSMICON);
}

SIZE InnerSize(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    return {client.right, client.bottom};
}

RECT AreaOf(HWND control) {
    RECT area{};
    GetWindowRect(control, &area);
    MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&area), 2);
    return area;
}

RECT WorkAreaOf(HWND window) {
    constexpr POINT kOnTheMainMonitor{};
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoA(window ? MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST)
                           : MonitorFromPoint(kOnTheMainMonitor, MONITOR_DEFAULTTOPRIMARY),
                    &monitor);
    return monitor.rcWork;
}

void CenterWindow(HWND window) {
    const HWND owner = GetWindow(window, GW_OWNER);
    RECT own{};
    GetWindowRect(window, &own);
    const RECT work = WorkAreaOf(owner ? owner : window);
    RECT around = work;
    if (owner && IsWindowVisible(owner) && !IsIconic(owner))
        GetWindowRect(owner, &around);
    const LONG width = own.right - own.left;
    const LONG height = own.bottom - own.top;
    const LONG left = (around.left + around.right - width) / 2;
    const LONG top = (around.top + around.bottom - height) / 2;
    SetWindowPos(window, nullptr, std::max(work.left, std::min(left, work.right - width)),
                 std::max(work.top, std::min(top, work.bottom - height)), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void DispatchForDialogs(MSG& message) {
    const HWND root = message.hwnd ? GetAncestor(message.hwnd, GA_ROOT) : nullptr;
    // The keyboard may be in a window behind a dialog that pumps events itself.
    const bool isKey = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
    if (root && isKey && !IsWindowEnabled(root))
        return;
    if (root && IsDialogWindow(root) &&
        (IsRepeatedPress(message) || IsDialogMessageW(root, &message)))
        return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

void RunPendingEvents() {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        DispatchForDialogs(message);
    }
}

void ReplaceForeignLetters(HWND field) {
    if (!HoldsForeignLetters(field))
        return;
    DWORD caret = 0;
    SendMessageA(field, EM_GETSEL, 0, reinterpret_cast<LPARAM>(&caret));
    SetWindowTextA(field, TextOf(field).c_str());
    SendMessageA(field, EM_SETSEL, caret, caret);
    MessageBeep(MB_ICONWARNING);
}

void FollowFocus(HWND button, int notification, int defaultId) {
    const HWND dialog = GetAncestor(button, GA_ROOT);
    if (notification == BN_SETFOCUS) {
        SendMessageA(GetDlgItem(dialog, defaultId), BM_SETSTYLE, BS_PUSHBUTTON, TRUE);
        SendMessageA(button, BM_SETSTYLE, BS_DEFPUSHBUTTON, TRUE);
    } else if (notification == BN_KILLFOCUS) {
        SendMessageA(button, BM_SETSTYLE, BS_PUSHBUTTON, TRUE);
        SendMessageA(dialog, DM_SETDEFID, static_cast<WPARAM>(defaultId), 0);
    }
}

void ShowFailure(HWND window, const std::exception& failure) {
    const HWND root = GetAncestor(window, GA_ROOT);
    ShowMessage(root, AsSentence(failure.what()), TextOf(root), MB_OK | MB_ICONERROR);
}

int ShowMessage(HWND owner, const std::string& text, const std::string& title, UINT style) {
    return MessageBoxA(owner, WithBreaks(text).c_str(), title.c_str(), style);
}

SIZE TextSize(HWND control, const std::string& text) {
    const HDC dc = GetDC(control);
    const HGDIOBJ before =
        SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageA(control, WM_GETFONT, 0, 0)));
    SIZE size{};
    GetTextExtentPoint32A(dc, text.c_str(), static_cast<int>(text.size()), &size);
    SelectObject(dc, before);
    ReleaseDC(control, dc);
    return size;
}

int WrappedHeight(HWND control, const std::string& text, int width) {
    const HDC dc = GetDC(control);
    const HGDIOBJ before =
        SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageA(control, WM_GETFONT, 0, 0)));
    RECT area{0, 0, width, 0};
    DrawTextA(dc, text.c_str(), -1, &area, DT_WORDBREAK | DT_NOPREFIX | DT_CALCRECT);
    SelectObject(dc, before);
    ReleaseDC(control, dc);
    return area.bottom;
}

int RoomForColumns(HWND list) {
    const int width = InnerSize(list).cx;
    const bool lacksBar = (GetWindowLongPtrA(list, GWL_STYLE) & WS_VSCROLL) == 0;
    const bool needsBar = ListView_GetItemCount(list) > ListView_GetCountPerPage(list);
    return lacksBar && needsBar ? width - ScrollBarWidth(list) : width;
}

void SetComboItems(HWND combo, const std::vector<std::string>& items) {
    SendMessageA(combo, CB_RESETCONTENT, 0, 0);
    for (const std::string& item : items)
        SendMessageA(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item.c_str()));
}

int ComboSelection(HWND combo) {
    return static_cast<int>(SendMessageA(combo, CB_GETCURSEL, 0, 0));
}

void SetComboSelection(HWND combo, int item) {
    SendMessageA(combo, CB_SETCURSEL, static_cast<WPARAM>(item), 0);
}

void SetClosedHeight(HWND combo, LONG pixels) {
    constexpr auto kSelectionField = static_cast<WPARAM>(-1);
    LRESULT inner = SendMessageA(combo, CB_GETITEMHEIGHT, kSelectionField, 0);
    // Twice: with its first own height a box may also get another border around it.
    for (int pass = 0; pass < 2; ++pass) {
        inner += pixels - HeightOf(AreaOf(combo));
        SendMessageA(combo, CB_SETITEMHEIGHT, kSelectionField, inner);
    }
}

void MatchHeight(HWND combo, HWND textField) {
    SetClosedHeight(combo, HeightOf(AreaOf(textField)));
}

GdiHandle DerivedFont(HFONT font, LONG weight, int percent) {
    LOGFONTA description = DescribeFont(font);
    description.lfWeight = weight;
    description.lfHeight = MulDiv(description.lfHeight, percent, 100);
    description.lfWidth = 0;
    return GdiHandle(CreateFontIndirectA(&description));
}

GdiHandle FontInFace(HFONT font, const std::string& face) {
    LOGFONTA description = DescribeFont(font);
    lstrcpynA(description.lfFaceName, face.c_str(), LF_FACESIZE);
    return GdiHandle(CreateFontIndirectA(&description));
}

void LetWindowsPaint() {
    constexpr int kMost = 50; // a window that does not paint itself would ask for ever
    MSG message{};
    for (int i = 0; i < kMost && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE | PM_QS_PAINT);
         ++i)
        DispatchMessageA(&message);
}

void DiscardInput() {
    struct Range {
        UINT first, last;
    };
    // The last one: fingers and pens, from which systems since Windows 8 make clicks later.
    static constexpr std::array<Range, 3> kInput{
        {{WM_KEYFIRST, WM_KEYLAST}, {WM_MOUSEFIRST, WM_MOUSELAST}, {0x0240, 0x0257}}};
    MSG message{};
    for (const Range& range : kInput) {
        while (PeekMessageW(&message, nullptr, range.first, range.last, PM_REMOVE)) {
            if (message.message == WM_QUIT) { // comes through every range
                PostQuitMessage(static_cast<int>(message.wParam));
                return;
            }
        }
    }
    ReleaseCapture(); // a pressed button would wait for its release, which may be among the clicks
}

void PaintBeforeInput(HWND window) {
    RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    DiscardInput();
}

} // namespace vesk
