#pragma once

#include "build/BuildFrontEnd.h"

#include <deque>
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
    std::optional<BuildEnding> ending;
    std::size_t done = 0, total = 0;

    bool answer = true;
    /// What a download does and gives; by default it fails.
    std::function<DownloadResult(const std::string& destination)> download;
    std::function<void(const std::string& line)> onLine;
    bool stop = false;

    void AddLogLine(const std::string& text, LogMode) override {
        lines.push_back(text);
        if (onLine)
            onLine(text);
    }
    void SetStatus(const std::string& caption) override { statuses.push_back(caption); }
    bool AskYesNo(const std::string& question, const std::string&) override {
        questions.push_back(question);
        return answer;
    }
    DownloadResult DownloadFile(const std::string&, const std::string& destination,
                                const std::string&) override {
        downloads.push_back(destination);
        return download ? download(destination) : DownloadResult::Failed;
    }
    void LetEventsRun() override {}
    void SetProgress(std::size_t nowDone, std::size_t ofTotal) override {
        done = nowDone;
        total = ofTotal;
    }
    bool StopRequested() override { return stop; }
    void EnterFinishedState(BuildEnding how) override { ending = how; }

    [[nodiscard]] bool Logged(const std::string& part) const {
        for (const std::string& line : lines) {
            if (line.find(part) != std::string::npos)
                return true;
        }
        return false;
    }
};

} // namespace vesk::test
