#pragma once

#include "script/modRegistryData.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The grammar of plug-in scripts, apart from the system that they act on. It is small and literal;
/// what looks like a slip in it is what existing scripts were written against.
namespace vesk {

/// What the variables of a script stand for.
struct ScriptVariables {
    std::string programPath; ///< %ProgramPath%
    std::string sourcePath;  ///< %SourcePath%
};

/// Where the effects of a script go.
class ScriptTarget {
public:
    virtual ~ScriptTarget() = default;

    /// Adds a line to the build log.
    virtual void AddLogLine(const std::string& line) = 0;

    /// Creates a registry key. @param root number of the root key, as the system has it
    virtual void CreateKey(std::uint32_t root, const std::string& key) = 0;

    /// Sets a value of a registry key. @param type the system's REG_ number
    virtual void SetValue(std::uint32_t root, const std::string& key, const std::string& valueName,
                          const std::string& data, std::uint32_t type) = 0;

    /// Makes a folder, whose parent must exist.
    virtual void MakeFolder(const std::string& path) = 0;
};

/// The lines of a text file, ended by CR LF, LF or CR. An end after the last line adds no further
/// one; an empty text is one empty line.
std::vector<std::string> SplitScriptLines(std::string_view text);

/// Lines `first` to `last`, both included; none when last < first.
struct ScriptBody {
    std::size_t first = 0;
    std::size_t last = 0;

    bool operator==(const ScriptBody&) const = default;
};

/// The lines that belong to a section (its name in lower case, brackets included): those of the
/// section line's last occurrence, or the whole file when there is none.
/// @param lines at least one
ScriptBody FindScriptBody(const std::vector<std::string>& lines, const std::string& sectionName);

/// Replaces the variable at an argument's start, after dropping all double quotes and the blanks
/// around it.
std::string ExpandScriptVariables(const std::string& argument, const ScriptVariables& variables);

/// Runs the named section of a script, line by line.
/// @throws Failure at the first line that lacks a field it needs; also whatever the target throws.
///         What was done before stays done.
void RunScript(const std::vector<std::string>& lines, const std::string& sectionName,
               const ScriptVariables& variables, ScriptTarget& target);

} // namespace vesk
