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
    const std::string source = basePage_->SourceFolder();
    return {clsInstallFolder(basePage_->InstallFolder(),
                             clsFolderGuard::OfSystem(paths_.programPath, source)),
            source, paths_.programPath, source_, true};
}

void frmBuilder::StartBuild() {
    try {
        inputs_ = std::make_unique<BuildInputs>(CollectInputs());
        if (const std::string refusal = CatalogueRefusal(catalogue_); !refusal.empty())
            throw FolderRefused(refusal);
    } catch (const FolderRefused& refusal) {
        ShowMessage(Window(), refusal.what(), kProductName, MB_OK | MB_ICONWARNING);
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
    clsBuildRun(*inputs_, catalogue_, *this).Run();
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

void frmBuilder::ReportProblem(const Problem& problem) {
    problems_.push_back(problem);
}

void frmBuilder::SetStatus(const std::string& caption) {
    buildPage_->SetStatus(caption);
}

bool frmBuilder::AskYesNo(const std::string& question, const std::string& title) {
    return ShowMessage(Window(), question, title, MB_YESNO | MB_ICONQUESTION) == IDYES;
}

std::optional<std::string> frmBuilder::AskPassword(const std::string&, bool) {
    return std::nullopt;
}

DownloadOutcome frmBuilder::DownloadFile(const DownloadRequest& request) {
    return frmProgress(Window()).DownloadFile(request);
}

void frmBuilder::LetEventsRun() {
    RunPendingEvents();
    lastEvents_ = GetTickCount();
}

void frmBuilder::SetProgress(const BuildProgress& progress) {
    constexpr std::size_t kSteps = 1000;
    const auto done = static_cast<std::size_t>(progress.fraction * kSteps);
    buildPage_->SetProgress(done, kSteps);
    taskbar_->SetProgress(done, kSteps);
}

void frmBuilder::EnterFinishedState(const BuildOutcome& outcome) {
    page_ = Page::Build;
    closing_.busy = false;
    closing_.finished = true;
    const EndingHeading heading = HeadingOf(outcome);
    SetText(Control(IDC_LBL_HEADING_SM), heading.title);
    SetText(Control(IDC_LBL_HEADING_SM2), heading.sentence);
    EnableButtons(true);
    SetText(Control(IDC_CMD_NEXT), "&Finish");
    SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(IDC_CMD_NEXT)), TRUE);
    if (outcome.ending == BuildEnding::InstallFailed)
        taskbar_->SetFailed();
    else
        taskbar_->Clear();
    if (GetForegroundWindow() != Window())
        FlashWindow(Window(), TRUE);
    try {
        SaveBuildLog(paths_.programPath, log_.SavedText());
        SaveProblems(paths_.programPath, problems_);
    } catch (const Failure& failure) {
        ShowMessage(Window(), std::string("The log could not be saved: ") + failure.what(),
                    kProductName, MB_OK | MB_ICONWARNING);
    }
}

} // namespace vesk
