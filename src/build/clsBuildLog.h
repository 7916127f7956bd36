#pragma once

#include "base/Problem.h"
#include "build/LogMode.h"

#include <string>
#include <vector>

namespace vesk {

/// File name of the saved log in the program folder. The spelling is what users and tools look for.
inline constexpr const char* kLogFileName = "veskbuider.log";

/// File name of the saved problems beside it.
inline constexpr const char* kProblemsFileName = "veskbuilder-problems.txt";

/// The build log without its view: the lines shown and the text kept for saving.
class clsBuildLog {
public:
    /// Adds a line in the given mode. @return the lines to show for it (one, or two with a blank).
    std::vector<std::string> Add(const std::string& text, LogMode mode);

    /// All lines shown so far.
    [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }

    /// What a saved log holds: each line ended by CR LF.
    [[nodiscard]] const std::string& SavedText() const { return savedText_; }

    /// True when a line reports something that went wrong in the run.
    [[nodiscard]] bool HasWarnings() const { return hasWarnings_; }

private:
    std::vector<std::string> lines_;
    std::string savedText_;
    bool hasWarnings_ = false;
};

/// True for a line that reports something that went wrong: a warning, an error, a missing archive.
bool IsWarningLine(const std::string& line);

} // namespace vesk
