#pragma once

#include "build/LogMode.h"
#include "net/DownloadResult.h"

#include <cstddef>
#include <string>

namespace vesk {

/// How a build run ended.
enum class BuildEnding { Done, InstallFailed, Aborted };

/// Whoever runs a build: the wizard, the console, a test. The build run knows no window and no
/// console; this is all it says and asks.
class BuildFrontEnd {
public:
    virtual ~BuildFrontEnd() = default;

    /// Adds one line to the build log; an empty text is an empty line.
    virtual void AddLogLine(const std::string& text, LogMode mode) = 0;

    /// Shows what is being done, in a few words.
    virtual void SetStatus(const std::string& caption) = 0;

    /// Asks a question that stops the run until it is answered. @return true for Yes.
    virtual bool AskYesNo(const std::string& question, const std::string& title) = 0;

    /// Downloads one archive and checks it.
    /// @param urls one address, or several parted by ","
    /// @param destination full path of the file
    /// @param crc expected CRC-32 text, or empty for any
    virtual DownloadResult DownloadFile(const std::string& urls, const std::string& destination,
                                        const std::string& crc) = 0;

    /// Lets pending events of the user interface run.
    virtual void LetEventsRun() = 0;

    /// Tells how many components are done, of how many.
    virtual void SetProgress(std::size_t done, std::size_t total) = 0;

    /// True once the user asked for the run to end at its next step.
    virtual bool StopRequested() = 0;

    /// The run is over and nothing more is asked. The front end offers to finish, and saves the log
    /// (SaveBuildLog): the text is its own.
    virtual void EnterFinishedState(BuildEnding ending) = 0;
};

} // namespace vesk
