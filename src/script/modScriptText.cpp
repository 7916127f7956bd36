#include "script/modScriptText.h"

#include "base/Failure.h"
#include "base/Problem.h"
#include "base/RunTimeError.h"
#include "base/modText.h"

#include <algorithm>

namespace vesk {

namespace {

/// The fields of one line. Asking for one that is not there ends the script.
class Fields {
public:
    explicit Fields(const std::string& line) : fields_(Split(line, ',')) {}

    [[nodiscard]] std::size_t Count() const { return fields_.size(); }

    [[nodiscard]] const std::string& operator[](std::size_t index) const {
        if (fields_.empty())
            throw Failure(kSubscriptOutOfRange, "ProcessScript", "the line is empty");
        if (index >= fields_.size())
            throw Failure(kSubscriptOutOfRange, "ProcessScript",
                          "a line of " + std::to_string(fields_.size()) + " fields needs field " +
                              std::to_string(index));
        return fields_[index];
    }

private:
    std::vector<std::string> fields_;
};

std::string Unquoted(const std::string& text) {
    return TrimBlanks(ReplaceAll(text, "\"", ""));
}

/// Position counted from 1; 0 when the character is not there.
std::size_t PositionOf(const std::string& line, char c) {
    return line.find(c) + 1; // npos + 1 is 0
}

/// Deliberately the bits of the two positions and not "both are there": "[ab]" (1 and 4) does not
/// end a section, "[abc]" (1 and 5) does.
bool EndsSection(const std::string& line) {
    return (PositionOf(line, '[') & PositionOf(line, ']')) != 0;
}

class Interpreter {
public:
    Interpreter(const ScriptVariables& variables, ScriptTarget& target)
        : variables_(variables), target_(target) {}

    void RunLine(const std::string& line) {
        const Fields fields(line);
        const std::string word = LowerCase(fields[0]); // an empty line has no field: the run ends
        if (word == "regwrite")
            WriteRegistry(fields);
        else if (word == "dirmake")
            MakeFolder(fields);
        // "dirmove", "dirdelete" and "dircopy" are commands too, which do nothing and log nothing;
        // any other line is text.
    }

private:
    void MakeFolder(const Fields& fields) {
        const std::string path = Expand(fields[1]);
        target_.AddLogLine("  Directory Create: " + path);
        target_.MakeFolder(path);
    }

    void WriteRegistry(const Fields& fields) {
        TakeRoot(fields[1]);
        TakeType(fields[2]);
        const std::string key = Unquoted(fields[3]);
        const std::string keyLine = "  Registry Write: " + fields[1] + "\\" + key;
        constexpr std::size_t kFieldsWithoutValue = 4;
        // With a value name the data has to be there as well, even where neither is used.
        const std::string data = fields.Count() > kFieldsWithoutValue ? DataOf(fields) : "";
        if (type_ == kRegistryNone) {
            target_.AddLogLine(keyLine);
            target_.CreateKey(root_, key);
            return;
        }
        const std::string valueName = Unquoted(fields[4]);
        target_.AddLogLine(keyLine + " \"" + valueName + "\" = " + data);
        target_.SetValue(root_, key, valueName, data, type_);
    }

    /// A root or type that is not known exactly as written, blanks and case included, leaves the
    /// previous line's in force.
    void TakeRoot(const std::string& name) {
        if (name == "HKCU")
            root_ = 0x80000001;
        else if (name == "HKLM")
            root_ = 0x80000006; // not the local machine: such writes are meant to come to nothing
    }

    void TakeType(const std::string& name) {
        if (name == "0x0")
            type_ = kRegistryNone;
        else if (name == "0x1")
            type_ = kRegistryText;
        else if (name == "0x2")
            type_ = kRegistryExpandableText;
        else if (name == "0x3")
            type_ = kRegistryBinary;
        else if (name == "0x4")
            type_ = kRegistryNumber;
        else if (name == "0x7")
            type_ = kRegistryTextList;
    }

    [[nodiscard]] std::string DataOf(const Fields& fields) const {
        constexpr std::size_t kFieldsWithComma = 7;
        std::string data = Unquoted(fields[5]);
        // "0x10" is cut to "0", not converted, and so is any text with an x in second place.
        if (data.size() > 1 && LowerCase(data.substr(1, 1)) == "x")
            data.erase(0, data.size() - 1);
        data = Expand(data);
        // One comma in the data is carried over; with two or more all that follows is dropped.
        if (fields.Count() == kFieldsWithComma)
            data.append(",").append(Expand(fields[6]));
        return data;
    }

    [[nodiscard]] std::string Expand(const std::string& argument) const {
        return ExpandScriptVariables(argument, variables_);
    }

    const ScriptVariables& variables_;
    ScriptTarget& target_;
    std::uint32_t root_ = 0;
    std::uint32_t type_ = kRegistryNone;
};

} // namespace

std::vector<std::string> SplitScriptLines(std::string_view text) {
    std::vector<std::string> lines;
    do {
        const std::size_t end = text.find_first_of("\r\n");
        lines.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return lines;
        text.remove_prefix(end + (text.substr(end).starts_with("\r\n") ? 2 : 1));
    } while (!text.empty());
    return lines;
}

ScriptBody FindScriptBody(const std::vector<std::string>& lines, const std::string& sectionName) {
    // From the back, so that each section line knows the next end without searching for it again.
    std::size_t start = 0;
    std::size_t end = 0;
    std::size_t nextEnd = 0; // 0: there is none behind
    for (std::size_t i = lines.size(); i-- > 0;) {
        if (LowerCase(lines[i]) == sectionName) {
            // The last occurrence counts, but an end found for an earlier one is kept when the last
            // has none; and without the section the whole file is its body.
            start = std::max(start, i + 1);
            if (end == 0 && nextEnd != 0)
                end = nextEnd - 1;
        }
        if (EndsSection(lines[i]))
            nextEnd = i;
    }
    // An end of 0 means "none found", also when an empty section at the file's top ended there.
    return {start, end == 0 ? lines.size() - 1 : end};
}

std::string ExpandScriptVariables(const std::string& argument, const ScriptVariables& variables) {
    std::string text = Unquoted(argument);
    const std::size_t percent = text.find('%', 1);
    const std::string prefix = percent == std::string::npos ? "" : text.substr(0, percent + 1);
    if (prefix == "%ProgramPath%")
        return variables.programPath + ReplaceAll(text, prefix, "");
    if (prefix == "%SourcePath%")
        return variables.sourcePath; // unlike above, what follows is dropped
    return text;
}

void RunScript(const std::vector<std::string>& lines, const std::string& sectionName,
               const ScriptVariables& variables, ScriptTarget& target) {
    const ScriptBody body = FindScriptBody(lines, sectionName);
    Interpreter interpreter(variables, target);
    for (std::size_t i = body.first; i <= body.last && i < lines.size(); ++i) {
        try {
            interpreter.RunLine(lines[i]);
        } catch (const Failure& failure) {
            throw Failure(failure.number, failure.source, failure.what(),
                          "line " + std::to_string(i + 1) + ": " + AsReason(failure.reason));
        }
    }
}

} // namespace vesk
