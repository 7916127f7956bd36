#include "build/modBuildRecord.h"

#include "base/modFile.h"
#include "build/clsBuildLog.h"

namespace vesk {

namespace {

/// An older file goes in any case.
void Save(const std::string& path, const std::string& text) {
    if (!text.empty())
        WriteCompleteFile(path, text);
    else if (const PathState state = StateOf(path);
             state == PathState::File || state == PathState::Unknown)
        RemoveFile(path);
}

} // namespace

void SaveBuildLog(const std::string& programPath, const std::string& text) {
    Save(programPath + kLogFileName, text);
}

void SaveProblems(const std::string& programPath, const std::vector<Problem>& problems) {
    std::string text;
    for (const Problem& problem : problems)
        text += problem.Line() + "\r\n";
    Save(programPath + kProblemsFileName, text);
}

} // namespace vesk
