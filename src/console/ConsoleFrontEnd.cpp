#include "console/ConsoleFrontEnd.h"

#include "base/Failure.h"
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

void ConsoleFrontEnd::SetStatus(const std::string& caption) {
    status_ = caption;
    DrawStatus();
}

bool ConsoleFrontEnd::AskYesNo(const std::string& question, const std::string&) {
    return options_.answer ? *options_.answer : terminal_.Ask(question);
}

DownloadResult ConsoleFrontEnd::DownloadFile(const std::string& urls,
                                             const std::string& destination,
                                             const std::string& crc) {
    ProxySettings proxy;
    if (options_.proxy)
        proxy = {kAccessProxy, options_.proxy->host, options_.proxy->port};
    const DownloadResult result = ConsoleDownload(terminal_).Run(urls, destination, crc, proxy);
    DrawStatus();
    return result;
}

void ConsoleFrontEnd::LetEventsRun() {
    DrawStatus();
}

void ConsoleFrontEnd::SetProgress(std::size_t done, std::size_t total) {
    progress_ = '[' + std::to_string(done);
    progress_.append("/").append(std::to_string(total)).append("] ");
    DrawStatus();
}

bool ConsoleFrontEnd::StopRequested() {
    return WasInterrupted();
}

void ConsoleFrontEnd::EnterFinishedState(BuildEnding) {
    terminal_.Draw("");
    try {
        SaveBuildLog(programPath_, log_.SavedText());
    } catch (const Failure& failure) {
        terminal_.Complain(std::string("the log could not be saved: ") + failure.what());
    }
}

void ConsoleFrontEnd::DrawStatus() {
    terminal_.Draw(progress_ + status_);
}

} // namespace vesk
