#include "ui/wizard/frmPassword.h"

#include "archive/modUnzip.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

namespace vesk {

std::optional<std::string> frmPassword::Ask(HWND owner) {
    RunModal(owner, IDD_PASSWORD);
    return password_;
}

void frmPassword::OnCreated() {
    SetWindowIcon(Window());
    SetText(Window(), kPasswordTitle);
    const std::string question =
        wrongBefore_ ? "This is not the password of " + archiveName_ + ". Try again."
                     : archiveName_ + " is locked with a password.";
    SetText(Control(IDC_LBL_PASSWORD), question);
    EnableWindow(Control(IDOK), FALSE);
    CenterWindow(Window());
}

void frmPassword::OnCommand(int id, int notification) {
    if (id == IDC_TXT_PASSWORD && notification == EN_CHANGE)
        EnableWindow(Control(IDOK), !TextOf(Control(IDC_TXT_PASSWORD)).empty());
    if (id == IDOK)
        password_ = TextOf(Control(IDC_TXT_PASSWORD));
    if (id == IDOK || id == IDCANCEL)
        EndDialog(Window(), id);
}

INT_PTR frmPassword::Handle(UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        return TRUE;
    case WM_COMMAND:
        OnCommand(LOWORD(wparam), HIWORD(wparam));
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace vesk
