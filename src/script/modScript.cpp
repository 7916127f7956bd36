#include "script/modScript.h"

#include "base/Failure.h"
#include "base/Problem.h"
#include "base/modFile.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "script/clsRegistry.h"
#include "script/modScriptText.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>

namespace vesk {

namespace {

/// Carries a script's effects out on this system.
class SystemTarget : public ScriptTarget {
public:
    explicit SystemTarget(const ScriptContext& context) : context_(context) {}

    void AddLogLine(const std::string& line) override {
        if (context_.addLogLine)
            context_.addLogLine(line);
    }
    // What the registry refuses does not end a script.
    void CreateKey(std::uint32_t root, const std::string& key) override {
        if (!clsRegistry::CreateNewKey(root, key))
            Report("registry key " + key + " not made", GetLastError());
    }
    void SetValue(std::uint32_t root, const std::string& key, const std::string& valueName,
                  const std::string& data, std::uint32_t type) override {
        clsRegistry::SetKeyValue(root, key, valueName, data, type);
        // Not the result: that of one type is turned round.
        const DWORD error = GetLastError();
        if (error != ERROR_SUCCESS)
            Report("registry value " + key + "\\" + valueName + " not written", error);
    }
    void MakeFolder(const std::string& path) override { CreateFolder(path); }

private:
    void Report(const std::string& what, DWORD error) const {
        if (context_.report)
            context_.report(what, AsReason(SystemErrorText(error)));
    }

    const ScriptContext& context_;
};

std::vector<std::string> LinesOfExistingFile(const std::string& path) {
    const PathState state = StateOf(path);
    if (state == PathState::Nothing || state == PathState::Folder)
        ThrowSystemError(ERROR_FILE_NOT_FOUND, "cannot read", path);
    const std::string text = ReadFileIfThere(path);
    if (IsUtf16(text))
        throw Failure(ERROR_NO_UNICODE_TRANSLATION, "ProcessScript", kIsUtf16);
    return SplitScriptLines(text);
}

} // namespace

void ProcessScript(const std::string& scriptPath, const std::string& sectionName,
                   const ScriptContext& context) {
    SystemTarget target(context);
    target.AddLogLine("Processing script: " + scriptPath);
    RunScript(LinesOfExistingFile(scriptPath), sectionName,
              {context.installFolder, context.sourceFolder}, target);
}

std::vector<std::string> ReadFileLines(const std::string& path) {
    if (!FileExists(path))
        return {};
    return SplitScriptLines(ReadFileIfThere(path));
}

bool IsLineInFile(const std::string& path, const std::string& line) {
    const std::vector<std::string> lines = LinesOfExistingFile(path);
    return std::ranges::find(lines, line) != lines.end();
}

} // namespace vesk
