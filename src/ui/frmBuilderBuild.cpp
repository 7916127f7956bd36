// The part of the wizard that runs a build: frmBuilder as the build run's front end.
#include "ui/frmBuilder.h"

#include "base/Failure.h"
#include "startup/Version.h"
#include "ui/frmProgress.h"
#include "ui/pagBase.h"
#include "ui/pagBuild.h"
#include "ui/resources/ids.h"

namespace vesk {

namespace {

constexpr DWORD kEventsInterval = 25; // milliseconds: a window that answers later feels stuck

} // namespace

BuildInputs frmBuilder::CollectInputs() const {
    return {basePage_->InstallFolder(), basePage_->SourceFolder(), paths_.programPath, source_};
}

void frmBuilder::StartBuild() {
    const std::string problem = InstallFolderProblem(CollectInputs());
    if (!problem.empty()) {
        ShowMessage(Window(), problem, kProductName, MB_OK | MB_ICONWARNING);
        return;
    }
    closing_.busy = true;
    ShowHeading(Page::Build);
    ShowPageWindow(Page::Build);
    EnableButtons(false);
    buildPage_->FocusLog();
    // The click ends before the run begins: nothing of the button's handling waits for its end.
    PostMessageA(Window(), kRunBuildMessage, 0, 0);
}

void frmBuilder::RunBuild() {
    const BuildInputs inputs = CollectInputs();
    clsBuildRun(inputs, catalogue_, *this).Run();
}

void frmBuilder::EnableButtons(bool enabled) {
    for (const int id : {IDC_CMD_HELP, IDC_CMD_NEXT, IDCANCEL})
        EnableWindow(Control(id), enabled);
    EnableWindow(Control(IDC_CMD_BACK), FALSE);
}

void frmBuilder::AddLogLine(const std::string& text, LogMode mode) {
    buildPage_->LogList().ShowLines(log_.Add(text, mode));
    if (GetTickCount() - lastEvents_ >= kEventsInterval)
        LetEventsRun();
}

void frmBuilder::SetStatus(const std::string& caption) {
    buildPage_->SetStatus(caption);
}

bool frmBuilder::AskYesNo(const std::string& question, const std::string& title) {
    return ShowMessage(Window(), question, title, MB_YESNO | MB_ICONQUESTION) == IDYES;
}

DownloadResult frmBuilder::DownloadFile(const std::string& urls, const std::string& destination,
                                        const std::string& crc) {
    return frmProgress(Window()).DownloadFile(urls, destination, crc);
}

void frmBuilder::LetEventsRun() {
    RunPendingEvents();
    lastEvents_ = GetTickCount();
}

void frmBuilder::SetProgress(std::size_t done, std::size_t total) {
    buildPage_->SetProgress(done, total);
    taskbar_->SetProgress(done, total);
}

void frmBuilder::EnterFinishedState(BuildEnding ending) {
    page_ = Page::Build;
    closing_.busy = false;
    closing_.finished = true;
    const EndingHeading heading = HeadingOf(ending, log_.HasWarnings());
    SetText(Control(IDC_LBL_HEADING_SM), heading.title);
    SetText(Control(IDC_LBL_HEADING_SM2), heading.sentence);
    EnableButtons(true);
    SetText(Control(IDC_CMD_NEXT), "&Finish");
    SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(IDC_CMD_NEXT)), TRUE);
    if (ending == BuildEnding::InstallFailed)
        taskbar_->SetFailed();
    else
        taskbar_->Clear();
    if (GetForegroundWindow() != Window())
        FlashWindow(Window(), TRUE);
    try {
        SaveBuildLog(paths_.programPath, log_.SavedText());
    } catch (const Failure& failure) {
        ShowMessage(Window(), std::string("The log could not be saved: ") + failure.what(),
                    kProductName, MB_OK | MB_ICONWARNING);
    }
}

} // namespace vesk
