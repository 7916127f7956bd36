#include <windows.h>

#include <commctrl.h>

namespace {

INT_PTR CALLBACK OnMessage(HWND dialog, UINT message, WPARAM command, LPARAM) {
    if (message == WM_CLOSE || (message == WM_COMMAND && LOWORD(command) == IDCANCEL))
        EndDialog(dialog, 0);
    return message == WM_INITDIALOG ? TRUE : FALSE;
}

/// A dialog template without a control, as the system reads it from memory.
struct EmptyTemplate {
    DLGTEMPLATE head{WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE, 0, 0, 0, 0, 300, 200};
    WORD menu = 0;
    WORD windowClass = 0;
    wchar_t title[13] = L"Vesk Builder";
};

} // namespace

/// An empty dialog of the wizard's title, what the wizard's first page is compared with. It has the
/// wizard's manifest and registers the same controls: any program of this kind starts with that.
int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_USEREX_CLASSES | ICC_LISTVIEW_CLASSES |
                                                             ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&controls);
    alignas(DWORD) static const EmptyTemplate empty;
    return static_cast<int>(DialogBoxIndirectParamW(instance, &empty.head, nullptr, OnMessage, 0));
}
