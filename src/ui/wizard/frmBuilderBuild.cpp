// The part of the wizard that runs a build: frmBuilder as the build run's front end.
#include "ui/wizard/frmBuilder.h"

#include "base/Failure.h"
#include "base/Version.h"
#include "build/modSaveLog.h"
#include "ui/resources/ids.h"
#include "ui/wizard/frmPassword.h"
#include "ui/wizard/frmProgress.h"
#include "ui/wizard/modWizardText.h"
#include "ui/wizard/pagBaseComponents.h"
#include "ui/wizard/pagBuild.h"
#include "ui/wizard/pagSummary.h"

namespace vesk {

namespace {

constexpr DWORD kEventsInterval = 25; // milliseconds: a window that answers later feels stuck

/// Runs one of several things that have to be saved. @return what failed, ready to be shown
template <class Save>
std::string FailureOf(const std::string& what, Save&& save) {
    try {
        save();
        return {};
    } catch (const Failure& failure) {
        return what + " could not be saved: " + failure.what() + "\r\n";
    }
}

} // namespace

ChosenFolder frmBuilder::LookAtChosenFolder() const {
    return LookAtFolder(basePage_->InstallFolder(), paths_.programPath, basePage_->SourceFolder());
}

void frmBuilder::Refuse(const FolderRefused& refusal) const {
    ShowMessage(Window(), refusal.what(), kProductName, MB_OK | MB_ICONWARNING);
}

/// Before the page with the installation folder is left for the next one.
bool frmBuilder::AcceptInstallFolder() {
    try {
        basePage_->ShowInstallFolder(LookAtChosenFolder().folder.Path());
        return true;
    } catch (const FolderRefused& refusal) {
        Refuse(refusal);
        basePage_->FocusInstallFolder();
        return false;
    }
}

void frmBuilder::ShowSummary() {
    summaryPage_->SetSummary(SummaryText(
        {catalogue_, basePage_->InstallFolder(), basePage_->SourceFolder(), source_.valid}));
    std::string warning;
    try {
        warning = LookAtChosenFolder().Warning();
    } catch (const FolderRefused& refusal) {
        warning = refusal.what(); // the disk has changed since the folder was accepted
    }
    summaryPage_->SetWarning(warning);
}

/// A foreign folder is emptied only after the user was told what is in it.
BuildInputs frmBuilder::CollectInputs() {
    if (const std::string refusal =
            CatalogueRefusal(catalogue_, load_.state == CatalogueState::Whole);
        !refusal.empty())
        throw FolderRefused(refusal);
    const ChosenFolder chosen = LookAtChosenFolder();
    if (chosen.Warning() != summaryPage_->Warning()) {
        summaryPage_->SetWarning(chosen.Warning());
        throw FolderRefused("The content of the installation folder has changed: " +
                            chosen.folder.Path() + ". Look at this page again before you go on.");
    }
    return {chosen.folder, basePage_->SourceFolder(), paths_.programPath, source_,
            chosen.IsForeign()};
}

bool frmBuilder::AcceptsPartialCatalogue() {
    return load_.state == CatalogueState::Whole ||
           ShowMessage(
               Window(),
               "The catalogue was read only in part: " + load_.sentence +
                   "\r\n\r\nWhat was not read is not in the build. Do you want to build all "
                   "the same?",
               kProductName, MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2) == IDYES;
}

/// Everything that can speak against a build does so before anything is changed.
bool frmBuilder::PrepareBuild() {
    try {
        run_.reset();
        inputs_ = std::make_unique<BuildInputs>(CollectInputs());
        if (!AcceptsPartialCatalogue())
            return false;
        BuildFrontEnd& frontEnd = *this;
        run_ = std::make_unique<clsBuildRun>(*inputs_, catalogue_, frontEnd);
        return true;
    } catch (const FolderRefused& refusal) {
        Refuse(refusal);
        return false;
    }
}

void frmBuilder::StartBuild() {
    if (!PrepareBuild())
        return;
    closing_.busy = true;
    ShowHeading(Page::Build);
    ShowPageWindow(Page::Build);
    EnableButtons(false);
    buildPage_->FocusLog();
    // The click ends before the run begins: nothing of the button's handling waits for its end.
    PostMessageA(Window(), kRunBuildMessage, 0, 0);
}

/// Whatever becomes of the run, the wizard ends in a state in which it tells so and can be closed.
void frmBuilder::RunBuild() {
    try {
        run_->Run();
    } catch (const std::exception& failure) {
        if (!closing_.finished) {
            const std::string reason = ReasonOf(failure);
            ReportProblem({inputs_->installFolder.Path(), "the build broke off", reason});
            EnterFinishedState({BuildEnding::InstallFailed, false, false, problems_.size(),
                                "the build broke off, " + reason});
        }
    }
    run_.reset();
}

void frmBuilder::EnableButtons(bool enabled) {
    for (const int id : {IDC_CMD_HELP, IDC_CMD_NEXT})
        EnableWindow(Control(id), enabled);
    // Nothing is left to cancel on the last page, and nothing to go back to.
    EnableWindow(Control(IDC_CMD_BACK), FALSE);
    EnableWindow(Control(IDCANCEL), FALSE);
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

std::optional<std::string> frmBuilder::AskPassword(const std::string& archiveName,
                                                   bool wrongBefore) {
    return frmPassword(archiveName, wrongBefore).Ask(Window());
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
    ShowEnding(outcome);
    if (VerdictOf(outcome) == BuildVerdict::Whole ||
        VerdictOf(outcome) == BuildVerdict::WithProblems)
        taskbar_->Clear();
    else
        taskbar_->SetFailed();
    if (GetForegroundWindow() != Window())
        FlashWindow(Window(), TRUE);
    SaveRecord();
}

void frmBuilder::ShowEnding(const BuildOutcome& outcome) {
    const EndingHeading heading = HeadingOf(outcome);
    SetText(Control(IDC_LBL_HEADING_SM), heading.title);
    SetText(Control(IDC_LBL_HEADING_SM2), heading.sentence);
    SetText(Control(IDC_CMD_PROBLEMS), "&Problems (" + std::to_string(problems_.size()) + ")...");
    ShowControl(IDC_CMD_PROBLEMS, !problems_.empty());
    EnableButtons(true);
    SetText(Control(IDC_CMD_NEXT), "&Finish");
    SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(IDC_CMD_NEXT)), TRUE);
    buildPage_->LogList().ShowFirstWarning();
}

void frmBuilder::SaveRecord() {
    const std::string failures =
        FailureOf("The log", [&] { SaveBuildLog(paths_.programPath, log_.SavedText()); }) +
        FailureOf("The list of problems", [&] { SaveProblems(paths_.programPath, problems_); });
    if (!failures.empty())
        ShowMessage(Window(), failures, kProductName, MB_OK | MB_ICONWARNING);
}

} // namespace vesk
