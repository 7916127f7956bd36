// The wizard's entry: checks the system, then opens the form that the command line asks for.
#include "base/ComLibrary.h"
#include "base/Version.h"
#include "base/modSystemLibrary.h"
#include "base/modText.h"
#include "base/modWide.h"
#include "startup/modStartUp.h"
#include "ui/editor/frmSetup.h"
#include "ui/kit/modBoxText.h"
#include "ui/kit/modVersions.h"
#include "ui/kit/modWindow.h"
#include "ui/wizard/frmBuilder.h"

#include <windows.h>

#include <commctrl.h>

#include <exception>
#include <string>

namespace vesk {

namespace {

/// More than the system's newest classes: before its version 6 the library knows lists and progress
/// bars only when they are asked for.
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
    case StartRefusal::RightsUnknown:
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
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchForDialogs(message);
    return static_cast<int>(message.wParam);
}

/// @param told the wizard said what is wrong with the catalogue's file
int RunCatalogueEditor(const ProgramPaths& paths, bool told) {
    frmSetup editor(paths, told);
    editor.Show();
    return RunMessageLoop();
}

int RunWizard(const ProgramPaths& paths) {
    frmBuilder wizard(paths);
    // Systems from 6.0 to 6.3 draw the arrows of "< Back" and "Next >" badly in the dialog font.
    wizard.Show(SystemMajorVersion() == 6 ? "Arial" : "");
    const int code = RunMessageLoop();
    return wizard.WantsEditor() ? RunCatalogueEditor(paths, true) : code;
}

/// Tells why the program cannot work from its folder: a wizard without a catalogue would not say
/// it.
/// @return false when it does
bool ProgramFolderIsFit() {
    const auto fault = FindProgramFolderFault();
    if (!fault)
        return true;
    const std::string text = AsSentence(fault->what) + " " + fault->advice + "\r\n\r\n";
    MessageBoxW(nullptr, (Widen(text) + fault->program).c_str(), Widen(kProductName).c_str(),
                MB_OK | MB_ICONERROR);
    return false;
}

/// There is one kind of build, so that what is tested is what is released: the question whether to
/// show the editor, which a build for developers would ask here, is left to "-setup".
int Main(const char* commandLine) {
    if (!SystemIsFit())
        return 1;
    if (!ProgramFolderIsFit())
        return 1;
    InitializeControls();
    const ComLibrary apartment;
    const ProgramPaths paths = FindProgramPaths();
    return EqualNoCase(FirstWord(commandLine, 1), "-setup") ? RunCatalogueEditor(paths, false)
                                                            : RunWizard(paths);
}

} // namespace

} // namespace vesk

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR lpCmdLine, int) {
    vesk::LoadFromSystemOnly();
    vesk::OnMissingLibrary([](const char* library) { FatalAppExitA(0, library); });
    try {
        vesk::PrepareProcess();
        return vesk::Main(lpCmdLine);
    } catch (const std::exception& failure) {
        vesk::ShowMessage(nullptr, vesk::AsSentence(failure.what()), vesk::kProductName,
                          MB_OK | MB_ICONERROR);
        return 1;
    }
}
