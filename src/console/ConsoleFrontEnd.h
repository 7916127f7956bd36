#pragma once

#include "build/BuildFrontEnd.h"
#include "build/BuildLog.h"
#include "console/Options.h"
#include "console/Terminal.h"

#include <string>

namespace vesk {

/// Runs a build on the console: the log on the standard output, the rest on the error output.
class ConsoleFrontEnd : public BuildFrontEnd {
public:
    /// Everything given must outlive the front end.
    ConsoleFrontEnd(const ConsoleOptions& options, const std::string& programPath,
                    Terminal& terminal);

    void AddLogLine(const std::string& text, LogMode mode) override;
    void SetStatus(const std::string& caption) override;
    bool AskYesNo(const std::string& question, const std::string& title) override;
    DownloadResult DownloadFile(const std::string& urls, const std::string& destination,
                                const std::string& crc) override;
    void LetEventsRun() override;
    void SetProgress(std::size_t done, std::size_t total) override;
    bool StopRequested() override;
    void EnterFinishedState(BuildEnding ending) override;

    [[nodiscard]] bool HasWarnings() const { return log_.HasWarnings(); }

private:
    void DrawStatus();

    const ConsoleOptions& options_;
    const std::string& programPath_;
    Terminal& terminal_;
    BuildLog log_;
    std::string status_;
    std::string progress_;
};

} // namespace vesk
