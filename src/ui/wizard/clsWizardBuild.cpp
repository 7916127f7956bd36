#include "ui/wizard/clsWizardBuild.h"

#include "base/Failure.h"
#include "base/Version.h"
#include "base/clsPatience.h"
#include "build/modBuildRecord.h"
#include "ui/kit/modWindow.h"
#include "ui/wizard/frmPassword.h"
#include "ui/wizard/frmProgress.h"

#include <cstddef>
#include <exception>
#include <utility>

namespace vesk {

namespace {

constexpr DWORD kEventsInterval = 10; // milliseconds: a step of the build comes on top

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

clsWizardBuild::clsWizardBuild(HWND wizard, std::string programPath, clsBuildLog& log,
                               pagBuild& page, Ended ended)
    : wizard_(wizard),
      programPath_(std::move(programPath)),
      log_(log),
      page_(page),
      ended_(std::move(ended)),
      taskbar_(wizard) {}

void clsWizardBuild::Prepare(const BuildInputs& inputs, Catalogue& catalogue) {
    run_.reset();
    inputs_ = std::make_unique<BuildInputs>(inputs);
    BuildFrontEnd& frontEnd = *this;
    run_ = std::make_unique<clsBuildRun>(*inputs_, catalogue, frontEnd);
}

void clsWizardBuild::Run() {
    const clsPatience::Meanwhile alive(clsPatience::OfProgram(), [this] {
        if (!over_) // then the window may be closed, and its build's log is not saved yet
            LetEventsRun();
    });
    try {
        run_->Run();
    } catch (const std::exception& failure) {
        if (!over_) {
            const std::string reason = ReasonOf(failure);
            ReportProblem({inputs_->installFolder.Path(), "not finished", reason});
            EnterFinishedState({BuildEnding::InstallFailed, false, false, problems_.size(),
                                "the build failed, " + reason});
        }
    }
    run_.reset();
}

void clsWizardBuild::AddLogLine(const std::string& text, LogMode mode) {
    // The line is added to the list between two steps, and takes about as long as one.
    LetDueEventsRun();
    page_.LogList().ShowLines(log_.Add(text, mode));
    LetDueEventsRun();
}

void clsWizardBuild::ReportProblem(const Problem& problem) {
    problems_.push_back(problem);
}

void clsWizardBuild::SetStatus(const std::string& caption) {
    page_.SetStatus(caption);
}

/// With Yes as its default button, as everywhere: what would be lost stands on the page before. A
/// key of before does not press it.
bool clsWizardBuild::AskYesNo(const std::string& question, const std::string& title) {
    DiscardInput();
    return ShowMessage(wizard_, question, title, MB_YESNO | MB_ICONQUESTION) == IDYES;
}

std::optional<std::string> clsWizardBuild::AskPassword(const std::string& archiveName,
                                                       bool wrongBefore) {
    return frmPassword(archiveName, wrongBefore).Ask(wizard_);
}

DownloadOutcome clsWizardBuild::DownloadFile(const DownloadRequest& request) {
    // Within an event of the download no other may come.
    const clsPatience::Meanwhile none(clsPatience::OfProgram(), {});
    return frmProgress(wizard_).DownloadFile(request);
}

void clsWizardBuild::LetEventsRun() {
    RunPendingEvents();
    lastEvents_ = GetTickCount();
}

void clsWizardBuild::LetDueEventsRun() {
    if (GetTickCount() - lastEvents_ >= kEventsInterval)
        LetEventsRun();
}

void clsWizardBuild::SetProgress(const BuildProgress& progress) {
    constexpr std::size_t kSteps = 1000;
    const auto done = static_cast<std::size_t>(progress.fraction * kSteps);
    page_.SetProgress(done, kSteps);
    taskbar_.SetProgress(done, kSteps);
}

void clsWizardBuild::EnterFinishedState(const BuildOutcome& outcome) {
    over_ = true;
    ended_(outcome);
    page_.ShowEnded();
    ShowOnTaskbar(outcome);
    SaveRecord();
}

void clsWizardBuild::ShowOnTaskbar(const BuildOutcome& outcome) {
    const BuildVerdict verdict = VerdictOf(outcome);
    if (verdict == BuildVerdict::Whole || verdict == BuildVerdict::WithProblems)
        taskbar_.Clear();
    else
        taskbar_.SetFailed();
    if (GetForegroundWindow() != wizard_)
        FlashWindow(wizard_, TRUE);
}

void clsWizardBuild::SaveRecord() const {
    const std::string failures =
        FailureOf("The log", [&] { SaveBuildLog(programPath_, log_.SavedText()); }) +
        FailureOf("The list of problems", [&] { SaveProblems(programPath_, problems_); });
    if (!failures.empty())
        ShowMessage(wizard_, failures, kProductName, MB_OK | MB_ICONWARNING);
}

} // namespace vesk
