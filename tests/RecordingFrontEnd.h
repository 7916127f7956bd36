#pragma once

#include "build/clsBuildContext.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vesk::test {

/// Answers a build run from prepared answers and keeps what it said.
class RecordingFrontEnd : public BuildFrontEnd {
public:
    std::vector<std::string> lines;
    std::vector<std::string> statuses;
    std::vector<std::string> questions;
    std::vector<std::string> downloads; ///< Destinations, in order.
    std::vector<std::string> problems;  ///< As lines.
    std::optional<BuildOutcome> outcome;
    std::size_t done = 0, total = 0;
    std::vector<double> fractions; ///< Of the whole run, as they came.
    std::size_t events = 0;        ///< How often pending events could run.

    bool answer = true;
    /// What a download does and gives; by default it fails.
    std::function<DownloadResult(const std::string& destination)> download;
    std::function<void(const std::string& line)> onLine;
    bool stop = false;

    /// What the steps of a build share, told to this front end.
    clsBuildContext Context(const BuildInputs& inputs, Catalogue& catalogue,
                            const clsSha256List& sha256) {
        const auto report = [this](const Problem& problem) { ReportProblem(problem); };
        return {inputs, catalogue, *this, {}, report, sha256};
    }
    void AddLogLine(const std::string& text, LogMode) override {
        lines.push_back(text);
        if (onLine)
            onLine(text);
    }
    void ReportProblem(const Problem& problem) override { problems.push_back(problem.Line()); }
    void SetStatus(const std::string& caption) override { statuses.push_back(caption); }
    bool AskYesNo(const std::string& question, const std::string&) override {
        questions.push_back(question);
        return answer;
    }
    std::optional<std::string> AskPassword(const std::string&, bool) override {
        return std::nullopt;
    }
    DownloadOutcome DownloadFile(const DownloadRequest& request) override {
        downloads.push_back(request.destination);
        return {download ? download(request.destination) : DownloadResult::Failed,
                "the test said no"};
    }
    void LetEventsRun() override { ++events; }
    void SetProgress(const BuildProgress& progress) override {
        done = progress.componentsDone;
        total = progress.componentCount;
        fractions.push_back(progress.fraction);
    }
    bool StopRequested() override { return stop; }
    void EnterFinishedState(const BuildOutcome& how) override { outcome = how; }
};

} // namespace vesk::test
