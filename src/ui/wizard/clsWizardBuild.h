#pragma once

#include "build/BuildFrontEnd.h"
#include "build/clsBuildLog.h"
#include "build/clsBuildRun.h"
#include "ui/kit/clsTaskbar.h"
#include "ui/wizard/pagBuild.h"

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

/// The build of a wizard: the build run works through it. It shows the log on the build page, asks
/// the questions over the wizard's window, downloads, and saves log and problems.
class clsWizardBuild : private BuildFrontEnd {
public:
    /// What is done once the run is over; the log is saved after that.
    using Ended = std::function<void(const BuildOutcome&)>;

    /// @param wizard owner of all dialogs @param programPath where log and problems are saved
    /// Log and page outlive the object.
    clsWizardBuild(HWND wizard, std::string programPath, clsBuildLog& log, pagBuild& page,
                   Ended ended);

    /// Makes a build ready; what was made ready before is dropped. @param catalogue outlives the
    /// build
    /// @throws FolderRefused when another build is at work in the folder
    void Prepare(const BuildInputs& inputs, Catalogue& catalogue);

    /// Runs what was made ready, to its end. Whatever becomes of it, `ended` is called once.
    void Run();

    /// What was not done, in the order in which it happened.
    [[nodiscard]] const std::vector<Problem>& Problems() const { return problems_; }

private:
    void AddLogLine(const std::string& text, LogMode mode) override;
    void ReportProblem(const Problem& problem) override;
    void SetStatus(const std::string& caption) override;
    bool AskYesNo(const std::string& question, const std::string& title) override;
    std::optional<std::string> AskPassword(const std::string& archiveName,
                                           bool wrongBefore) override;
    DownloadOutcome DownloadFile(const DownloadRequest& request) override;
    void LetEventsRun() override;
    void SetProgress(const BuildProgress& progress) override;
    bool StopRequested() override { return false; } // the window refuses to close meanwhile
    void EnterFinishedState(const BuildOutcome& outcome) override;

    void LetDueEventsRun();
    void ShowOnTaskbar(const BuildOutcome& outcome);
    void SaveRecord() const;

    HWND wizard_;
    std::string programPath_;
    clsBuildLog& log_;
    pagBuild& page_;
    Ended ended_;
    clsTaskbar taskbar_;
    std::vector<Problem> problems_;
    std::unique_ptr<BuildInputs> inputs_; ///< Of the build that is ready or runs.
    std::unique_ptr<clsBuildRun> run_;    ///< The same; keeps other builds out of the folder.
    DWORD lastEvents_ = 0;                ///< Tick count of when events last ran.
    bool over_ = false;
};

} // namespace vesk
