#include "ui/pagWelcome.h"

#include "ui/modLink.h"
#include "ui/modWindow.h"
#include "ui/resources/ids.h"

#include <commctrl.h>
#include <shellapi.h>

namespace vesk {

namespace {

constexpr UINT_PTR kSubclassId = 1;

bool MouseIsOnLink(HWND textBox) {
    POINT position{};
    GetCursorPos(&position);
    ScreenToClient(textBox, &position);
    const LRESULT at = SendMessageA(textBox, EM_CHARFROMPOS, 0, MAKELPARAM(position.x, position.y));
    return at != -1 && !LinkAtCaret(TextOf(textBox), LOWORD(at)).empty();
}

} // namespace

void OpenLinkAtCaret(HWND textBox) {
    DWORD begin = 0;
    DWORD end = 0;
    SendMessageA(textBox, EM_GETSEL, reinterpret_cast<WPARAM>(&begin),
                 reinterpret_cast<LPARAM>(&end));
    if (begin != end)
        return;
    const std::string link = LinkAtCaret(TextOf(textBox), begin);
    if (!link.empty())
        ShellExecuteA(GetAncestor(textBox, GA_ROOT), "open", link.c_str(), nullptr, nullptr,
                      SW_SHOWNORMAL);
}

pagWelcome::pagWelcome(HWND wizard) {
    Create(wizard, IDD_PAGE_WELCOME);
}

void pagWelcome::SetWelcomeText(const std::string& text) {
    SetText(Control(IDC_TXT_WELCOME), text);
}

void pagWelcome::OnCreated() {
    SetWindowSubclass(Control(IDC_TXT_WELCOME), TextProcedure, kSubclassId, 0);
    // The text stands exactly below the heading.
    SendMessageA(Control(IDC_TXT_WELCOME), EM_SETMARGINS, EC_LEFTMARGIN, 0);
}

INT_PTR pagWelcome::Handle(UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        return FALSE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
        SetTextColor(reinterpret_cast<HDC>(wparam), GetSysColor(COLOR_WINDOWTEXT));
        SetBkColor(reinterpret_cast<HDC>(wparam), GetSysColor(COLOR_WINDOW));
        return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_WINDOW));
    default:
        return FALSE;
    }
}

LRESULT CALLBACK pagWelcome::TextProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                           UINT_PTR id, DWORD_PTR) {
    switch (message) {
    case WM_SETCURSOR:
        if (LOWORD(lparam) == HTCLIENT && MouseIsOnLink(window)) {
            SetCursor(LoadCursorA(nullptr, IDC_HAND));
            return TRUE;
        }
        break;
    case WM_LBUTTONUP: {
        const LRESULT result = DefSubclassProc(window, message, wparam, lparam);
        OpenLinkAtCaret(window);
        return result;
    }
    case WM_KEYDOWN:
        // The keyboard's click; a read-only text has no other use for the space bar.
        if (wparam == VK_SPACE)
            OpenLinkAtCaret(window);
        break;
    case WM_NCDESTROY:
        RemoveWindowSubclass(window, TextProcedure, id);
        break;
    default:
        break;
    }
    return DefSubclassProc(window, message, wparam, lparam);
}

} // namespace vesk
