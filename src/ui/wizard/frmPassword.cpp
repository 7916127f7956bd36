#include "ui/wizard/frmPassword.h"

#include "archive/modUnzip.h"
#include "ui/kit/modBoxText.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

namespace vesk {

namespace {

constexpr const char* kHint = "With Cancel, encrypted files are left out of the build.";
constexpr const char* kForeign = "This password has a letter that the system's code page lacks.";

} // namespace

std::optional<std::string> frmPassword::Ask(HWND owner) {
    RunModal(owner, IDD_PASSWORD);
    return password_;
}

void frmPassword::OnCreated() {
    SetWindowIcon(Window());
    SetText(Window(), kPasswordTitle);
    const std::string name = Shortened(archiveName_);
    const std::string question = wrongBefore_
                                     ? "This is not the right password. Try again.\r\n" + name
                                     : name + " is protected by a password.";
    SetText(Control(IDC_LBL_PASSWORD), question);
    EnableWindow(Control(IDOK), FALSE);
    CenterWindow(Window());
}

void frmPassword::OnCommand(int id, int notification) {
    // A password with letters that the code page lacks would be another password.
    const HWND field = Control(IDC_TXT_PASSWORD);
    const bool foreign = HoldsForeignLetters(field);
    if (id == IDC_TXT_PASSWORD && notification == EN_CHANGE) {
        EnableWindow(Control(IDOK), !foreign && GetWindowTextLengthA(field) > 0);
        SetText(Control(IDC_LBL_PASSWORD_HINT), foreign ? kForeign : kHint);
    }
    if (id == IDOK)
        password_ = TextOf(field);
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
