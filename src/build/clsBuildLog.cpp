#include "build/clsBuildLog.h"

namespace vesk {

std::vector<std::string> clsBuildLog::Add(const std::string& text, LogMode mode) {
    std::vector<std::string> added{text};
    if (mode == LogMode::LineAndBlank)
        added.emplace_back();
    for (const std::string& line : added) {
        lines_.push_back(line);
        if (mode != LogMode::ListOnly)
            savedText_ += line + "\r\n";
    }
    hasWarnings_ = hasWarnings_ || IsWarningLine(text);
    return added;
}

bool IsWarningLine(const std::string& line) {
    return line.starts_with("Warning: ") || line.starts_with("ERROR: ") ||
           line.ends_with("[not found]");
}

} // namespace vesk
