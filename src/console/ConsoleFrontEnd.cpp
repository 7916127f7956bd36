#include "console/ConsoleFrontEnd.h"

#include "base/ResumeNext.h"
#include "console/ConsoleDownload.h"
#include "console/Interrupt.h"
#include "net/modHttpText.h"

namespace vesk {

ConsoleFrontEnd::ConsoleFrontEnd(const ConsoleOptions& options, const std::string& programPath,
                                 Terminal& terminal)
    : options_(options), programPath_(programPath), terminal_(terminal) {}

void ConsoleFrontEnd::AddLogLine(const std::string& text, LogMode mode) {
    for (const std::string& line : log_.Add(text, mode))
        terminal_.PrintLine(line);
}

void ConsoleFrontEnd::ReportProblem(const Problem& problem) {
    problems_.push_back(problem);
    terminal_.Complain(problem.Line());
}

void ConsoleFrontEnd::SetStatus(const std::string& caption) {
    status_ = caption;
    DrawStatus();
}

bool ConsoleFrontEnd::AskYesNo(const std::string& question, const std::string&) {
    return options_.answer ? *options_.answer : terminal_.Ask(question);
}

std::optional<std::string> ConsoleFrontEnd::AskPassword(const std::string& archiveName,
                                                        bool wrongBefore) {
    if (options_.password)
        return wrongBefore ? std::nullopt : options_.password;
    return terminal_.AskSecret((wrongBefore ? "Wrong. Password of " : "Password of ") +
                               archiveName + ":");
}

DownloadOutcome ConsoleFrontEnd::DownloadFile(const DownloadRequest& request) {
    if (!sockets_)
        sockets_.emplace();
    ProxySettings proxy;
    if (options_.proxy)
        proxy = {kAccessProxy, options_.proxy->host, options_.proxy->port};
    DownloadOutcome outcome = ConsoleDownload(terminal_).Run(request, proxy, options_.timeout);
    DrawStatus();
    return outcome;
}

void ConsoleFrontEnd::LetEventsRun() {
    DrawStatus();
}

void ConsoleFrontEnd::SetProgress(const BuildProgress& progress) {
    progress_ = '[' + std::to_string(progress.componentsDone);
    progress_.append("/").append(std::to_string(progress.componentCount)).append("] ");
    progress_ += std::to_string(static_cast<int>(progress.fraction * 100)) + "% ";
    DrawStatus();
}

bool ConsoleFrontEnd::StopRequested() {
    return WasInterrupted();
}

void ConsoleFrontEnd::EnterFinishedState(const BuildOutcome&) {
    terminal_.Draw("");
    SaveRecord();
}

void ConsoleFrontEnd::SaveRecord() {
    const ProblemReport report = [this](const Problem& problem) { ReportProblem(problem); };
    ResumeNext(report, {programPath_ + kLogFileName, "not saved"},
               [this] { SaveBuildLog(programPath_, log_.SavedText()); });
    ResumeNext(report, {programPath_ + kProblemsFileName, "not saved"},
               [this] { SaveProblems(programPath_, problems_); });
}

void ConsoleFrontEnd::DrawStatus() {
    terminal_.Draw(progress_ + status_);
}

} // namespace vesk
