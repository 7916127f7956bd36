#include "ui/kit/clsListDialog.h"

#include "ui/kit/modWindow.h"

namespace vesk {

INT_PTR clsListDialog::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        SetWindowIcon(Window());
        layout_.Attach(Window());
        OnCreated();
        CenterWindow(Window());
        SetFocus(list_.Window());
        return FALSE;
    case WM_COMMAND:
        OnCommand(LOWORD(wparam), HIWORD(wparam));
        return TRUE;
    case WM_NOTIFY:
        if (const auto& header = *reinterpret_cast<const NMHDR*>(lparam);
            !list_.HandleNotify(header) && header.hwndFrom == list_.Window())
            OnListNotify(header);
        return TRUE;
    default:
        if (!layout_.Handle(message, lparam))
            return FALSE;
        list_.FitColumns();
        return TRUE;
    }
}

} // namespace vesk
