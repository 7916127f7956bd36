#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vesk {

/// What a plug-in script sees of the run that it is part of.
struct ScriptContext {
    std::function<void(const std::string& line)> addLogLine;

    /// Receives what was not done although the script went on, and why.
    std::function<void(const std::string& what, const std::string& reason)> report;
    std::string installFolder; ///< Stands for %ProgramPath%.
    std::string sourceFolder;  ///< Stands for %SourcePath%.
};

/// Runs the named section (lower case, brackets included) of a script file, line by line.
/// @throws Failure (or another std::exception) at the first line that fails, and when there is no
///         such file or it is UTF-16 text; what was done before stays done.
void ProcessScript(const std::string& scriptPath, const std::string& sectionName,
                   const ScriptContext& context);

/// The lines of a file: none when it does not exist, at least one when it does. @throws Failure
/// when it cannot be read
std::vector<std::string> ReadFileLines(const std::string& path);

/// True when the file holds exactly this line, letter case included.
/// @throws Failure when there is no such file, it cannot be read, or it is UTF-16 text.
bool IsLineInFile(const std::string& path, const std::string& line);

} // namespace vesk
