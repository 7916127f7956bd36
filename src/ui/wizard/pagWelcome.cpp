#include "ui/wizard/pagWelcome.h"

#include "ui/kit/modBand.h"
#include "ui/kit/modLink.h"
#include "ui/kit/modReadOnlyText.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

#include <shellapi.h>

#include <cstddef>

namespace vesk {

namespace {

/// The character under a point of a text box; nothing beside and below the text, where the system
/// names the nearest one.
std::optional<std::size_t> CharacterAt(HWND textBox, POINT point) {
    const LRESULT found = SendMessageA(textBox, EM_CHARFROMPOS, 0, MAKELPARAM(point.x, point.y));
    if (found == -1)
        return std::nullopt;
    const std::size_t at = LOWORD(found);
    const std::string text = TextOf(textBox);
    const LRESULT corner = SendMessageA(textBox, EM_POSFROMCHAR, at, 0);
    if (at >= text.size() || corner == -1)
        return std::nullopt;
    const SIZE letter = TextSize(textBox, text.substr(at, 1));
    // The nearest one begins right of the point when that is on the right half of the one before.
    const SIZE before = TextSize(textBox, text.substr(at == 0 ? 0 : at - 1, 1));
    const int left = static_cast<short>(LOWORD(corner));
    const int top = static_cast<short>(HIWORD(corner));
    const bool inside = point.y >= top && point.y < top + letter.cy &&
                        point.x >= left - before.cx && point.x < left + letter.cx;
    return inside ? std::optional(at) : std::nullopt;
}

bool IsOnLink(HWND textBox, POINT point) {
    const auto at = CharacterAt(textBox, point);
    return at && !LinkAtCaret(TextOf(textBox), *at).empty();
}

POINT MousePosition(HWND textBox) {
    POINT position{};
    GetCursorPos(&position);
    ScreenToClient(textBox, &position);
    return position;
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
    text_.Attach(Control(IDC_TXT_WELCOME), [this](UINT message, WPARAM wparam, LPARAM lparam) {
        return OnTextMessage(message, wparam, lparam);
    });
    // The text stands exactly below the heading.
    SendMessageA(Control(IDC_TXT_WELCOME), EM_SETMARGINS, EC_LEFTMARGIN, 0);
    layout_.Attach(Window());
    layout_.Follow(clsLayout::kGrowX | clsLayout::kGrowY, {IDC_TXT_WELCOME});
    layout_.Follow(clsLayout::kMoveY, {IDC_LBL_WELCOME_NEXT});
}

INT_PTR pagWelcome::Handle(UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        return FALSE;
    case WM_SIZE:
        layout_.OnSize();
        return TRUE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
        return OnWhite(reinterpret_cast<HDC>(wparam));
    default:
        return FALSE;
    }
}

std::optional<LRESULT> pagWelcome::OnTextMessage(UINT message, WPARAM wparam, LPARAM lparam) {
    const HWND box = Control(IDC_TXT_WELCOME);
    switch (message) {
    case WM_SETCURSOR:
        if (LOWORD(lparam) != HTCLIENT || !IsOnLink(box, MousePosition(box)))
            return std::nullopt;
        SetCursor(LoadCursorA(nullptr, IDC_HAND));
        return TRUE;
    case WM_LBUTTONUP: {
        const LRESULT result = text_.PassOn(message, wparam, lparam);
        if (CharacterAt(box,
                        {static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))}))
            OpenLinkAtCaret(box);
        return result;
    }
    case WM_KEYDOWN:
        // The keyboard's click; a read-only text has no other use for the space bar.
        if (wparam == VK_SPACE)
            OpenLinkAtCaret(box);
        return std::nullopt;
    default:
        return PlainTextAnswer(message);
    }
}

} // namespace vesk
