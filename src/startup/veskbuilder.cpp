// The wizard's entry: checks the system, then opens the form that the command line asks for.
#include "base/Com.h"
#include "base/modText.h"
#include "startup/Version.h"
#include "startup/modMain.h"
#include "ui/frmBuilder.h"
#include "ui/frmSetup.h"
#include "ui/modProgramVersion.h"
#include "ui/modWindow.h"

#include <windows.h>

#include <commctrl.h>

#include <exception>

namespace vesk {

namespace {

bool InitializeControls() {
    INITCOMMONCONTROLSEX request{};
    request.dwSize = sizeof request;
    request.dwICC = ICC_USEREX_CLASSES | ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS;
    return InitCommonControlsEx(&request) != FALSE;
}

/// Tells why the program refuses to start. @return false when it does
bool SystemIsFit() {
    const StartRefusal refusal = CheckSystem(WindowsProbe());
    switch (refusal) {
    case StartRefusal::None:
        return true;
    case StartRefusal::NotWindowsNt:
        ShowMessage(nullptr, RefusalText(refusal), "Error", MB_OK | MB_ICONSTOP);
        return false;
    case StartRefusal::NotAdministrator:
        ShowMessage(nullptr, RefusalText(refusal), kProductName, MB_OK | MB_ICONINFORMATION);
        return false;
    }
    return false;
}

int RunMessageLoop() {
    MSG message{};
    while (GetMessageA(&message, nullptr, 0, 0) > 0)
        DispatchForDialogs(message);
    return static_cast<int>(message.wParam);
}

int RunWizard(const ProgramPaths& paths) {
    frmBuilder wizard(paths);
    wizard.Show();
    // Systems from 6.0 to 6.3 draw the arrows of "< Back" and "Next >" badly in the dialog font.
    if (SystemMajorVersion() == 6)
        wizard.SetButtonFace("Arial");
    return RunMessageLoop();
}

int RunCatalogueEditor(const ProgramPaths& paths) {
    frmSetup editor(paths);
    editor.Show();
    return RunMessageLoop();
}

int Main(const char* commandLine) {
    if (!SystemIsFit())
        return 1;
    InitializeControls();
    const ComLibrary apartment;
    const ProgramPaths paths = FindProgramPaths();
    return EqualNoCase(FirstWord(commandLine, 1), "-setup") ? RunCatalogueEditor(paths)
                                                            : RunWizard(paths);
}

} // namespace

} // namespace vesk

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR lpCmdLine, int) {
    try {
        return vesk::Main(lpCmdLine);
    } catch (const std::exception& failure) {
        vesk::ShowMessage(nullptr, failure.what(), vesk::kProductName, MB_OK | MB_ICONERROR);
        return 1;
    }
}
