#pragma once

#include "build/BuildFrontEnd.h"
#include "build/clsBuildLog.h"
#include "console/clsTerminal.h"
#include "console/modOptions.h"
#include "net/clsSocketServiceHold.h"

#include <optional>
#include <string>
#include <vector>

namespace vesk {

/// Runs a build on the console: the log on the standard output, the rest on the error output.
class clsConsoleFrontEnd : public BuildFrontEnd {
public:
    /// Everything given must outlive the front end.
    clsConsoleFrontEnd(const ConsoleOptions& options, const std::string& programPath,
                       clsTerminal& terminal);

    void AddLogLine(const std::string& text, LogMode mode) override;
    void ReportProblem(const Problem& problem) override;
    void SetStatus(const std::string& caption) override;
    bool AskYesNo(const std::string& question, const std::string& title) override;
    std::optional<std::string> AskPassword(const std::string& archiveName,
                                           bool wrongBefore) override;
    DownloadOutcome DownloadFile(const DownloadRequest& request) override;
    void LetEventsRun() override;
    void SetProgress(const BuildProgress& progress) override;
    bool StopRequested() override;
    void EnterFinishedState(const BuildOutcome& outcome) override;

    /// True when something was not done, the saving of log and problems included.
    [[nodiscard]] bool HasProblems() const { return log_.HasWarnings() || !problems_.empty(); }

private:
    void DrawStatus();
    void SaveRecord();

    const ConsoleOptions& options_;
    const std::string& programPath_;
    clsTerminal& terminal_;
    clsBuildLog log_;
    std::vector<Problem> problems_;
    std::optional<clsSocketServiceHold> sockets_; ///< From the first download on.
    std::string status_;
    std::string progress_;
};

} // namespace vesk
