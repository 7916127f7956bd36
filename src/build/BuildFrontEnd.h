#pragma once

#include "base/Problem.h"
#include "build/LogMode.h"
#include "build/modBuildOutcome.h"
#include "net/DownloadRequest.h"

#include <cstddef>
#include <optional>
#include <string>

namespace vesk {

/// How far a build is.
struct BuildProgress {
    std::size_t componentsDone = 0;
    std::size_t componentCount = 0;
    double fraction = 0; ///< 0 to 1, over all; grows with the bytes of the component at hand.
};

/// Whoever runs a build: the wizard, the console, a test. The build run knows no window and no
/// console; this is all it says and asks.
class BuildFrontEnd {
public:
    virtual ~BuildFrontEnd() = default;

    /// Adds one line to the build log; an empty text is an empty line.
    virtual void AddLogLine(const std::string& text, LogMode mode) = 0;

    /// Reports something that was not done, as it happens. The log does not say it.
    virtual void ReportProblem(const Problem& problem) = 0;

    /// Shows what is being done, in a few words.
    virtual void SetStatus(const std::string& caption) = 0;

    /// Asks a question that stops the run until it is answered. @return true for Yes.
    virtual bool AskYesNo(const std::string& question, const std::string& title) = 0;

    /// Asks for the password of an archive. @param wrongBefore the last answer was a wrong one
    /// @return nothing when there is no password: what it protects is then left out
    virtual std::optional<std::string> AskPassword(const std::string& archiveName,
                                                   bool wrongBefore) = 0;

    /// Downloads one archive and checks it. It is written to PartialPath(destination) and gets
    /// its own name only when it is done; what is left of a download that is not is the
    /// caller's to remove.
    virtual DownloadOutcome DownloadFile(const DownloadRequest& request) = 0;

    /// Lets pending events of the user interface run.
    virtual void LetEventsRun() = 0;

    /// Shows how far the build is: at its start, and whenever that changes.
    virtual void SetProgress(const BuildProgress& progress) = 0;

    /// True once the user asked for the run to end at its next step.
    virtual bool StopRequested() = 0;

    /// The run is over and nothing more is asked. The front end offers to finish, and saves the log
    /// and the problems (build/modBuildRecord): both are its own.
    virtual void EnterFinishedState(const BuildOutcome& outcome) = 0;
};

} // namespace vesk
