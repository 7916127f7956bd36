#include "console/clsConsoleFrontEnd.h"

#include "base/modResumeNext.h"
#include "build/modBuildRecord.h"
#include "console/clsConsoleDownload.h"
#include "console/modInterrupt.h"
#include "net/modHttpText.h"

namespace vesk {

clsConsoleFrontEnd::clsConsoleFrontEnd(const ConsoleOptions& options,
                                       const std::string& programPath, clsTerminal& terminal)
    : options_(options), programPath_(programPath), terminal_(terminal) {}

void clsConsoleFrontEnd::AddLogLine(const std::string& text, LogMode mode) {
    for (const std::string& line : log_.Add(text, mode))
        terminal_.PrintLine(line);
}

void clsConsoleFrontEnd::ReportProblem(const Problem& problem) {
    problems_.push_back(problem);
    terminal_.Complain(problem.Line());
}

void clsConsoleFrontEnd::SetStatus(const std::string& caption) {
    status_ = caption;
    DrawStatus();
}

bool clsConsoleFrontEnd::AskYesNo(const std::string& question, const std::string&) {
    return options_.answer ? *options_.answer : terminal_.Ask(question);
}

std::optional<std::string> clsConsoleFrontEnd::AskPassword(const std::string& archiveName,
                                                           bool wrongBefore) {
    if (options_.password)
        return wrongBefore ? std::nullopt : options_.password;
    return terminal_.AskSecret((wrongBefore ? "Wrong password. Password of " : "Password of ") +
                               archiveName + ":");
}

DownloadOutcome clsConsoleFrontEnd::DownloadFile(const DownloadRequest& request) {
    if (!sockets_)
        sockets_.emplace();
    ProxySettings proxy;
    if (options_.proxy)
        proxy = {kAccessProxy, options_.proxy->host, options_.proxy->port};
    DownloadOutcome outcome = clsConsoleDownload(terminal_).Run(request, proxy, options_.timeout);
    DrawStatus();
    return outcome;
}

void clsConsoleFrontEnd::LetEventsRun() {
    DrawStatus();
}

void clsConsoleFrontEnd::SetProgress(const BuildProgress& progress) {
    progress_ = '[' + std::to_string(progress.componentsDone);
    progress_.append("/").append(std::to_string(progress.componentCount)).append("] ");
    progress_ += std::to_string(static_cast<int>(progress.fraction * 100)) + "% ";
    DrawStatus();
}

bool clsConsoleFrontEnd::StopRequested() {
    return WasInterrupted();
}

void clsConsoleFrontEnd::EnterFinishedState(const BuildOutcome&) {
    terminal_.Draw("");
    SaveRecord();
}

void clsConsoleFrontEnd::SaveRecord() {
    const ProblemReport report = [this](const Problem& problem) { ReportProblem(problem); };
    ResumeNext(report, {programPath_ + kLogFileName, "not saved"},
               [this] { SaveBuildLog(programPath_, log_.SavedText()); });
    ResumeNext(report, {programPath_ + kProblemsFileName, "not saved"},
               [this] { SaveProblems(programPath_, problems_); });
}

void clsConsoleFrontEnd::DrawStatus() {
    terminal_.Draw(progress_ + status_);
}

} // namespace vesk
