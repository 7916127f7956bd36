#include "Input.h"
#include "base/Failure.h"
#include "base/modText.h"
#include "script/modScriptText.h"

#include <algorithm>

using namespace vesk;

namespace {

/// What a script would do: each thing is what was logged just before.
struct Witness : ScriptTarget {
    void AddLogLine(const std::string& line) override {
        Require(line.find_first_of("\r\n") == std::string::npos);
        logged = line;
    }
    void CreateKey(std::uint32_t root, const std::string& key) override {
        Require(logged.starts_with("  Registry Write: ") && logged.ends_with("\\" + key));
        Take("regwrite", root, key);
    }
    void SetValue(std::uint32_t root, const std::string& key, const std::string& name,
                  const std::string& data, std::uint32_t type) override {
        Require(logged.starts_with("  Registry Write: "));
        Require(logged.ends_with("\\" + key + " \"" + name + "\" = " + data));
        Require(type == kRegistryText || type == kRegistryExpandableText ||
                type == kRegistryBinary || type == kRegistryNumber || type == kRegistryTextList);
        Take("regwrite", root, key);
        try {
            const std::string bytes = RegistryBytes(data, type);
            Require(type != kRegistryText || bytes == data + '\0');
            Require(type != kRegistryNumber || bytes.size() == 4);
        } catch (const Failure&) { // data of another type
        }
    }
    void MakeFolder(const std::string& path) override {
        Require(logged == "  Directory Create: " + path);
        done.emplace_back("dirmake");
    }
    void Take(const char* command, std::uint32_t root, const std::string& key) {
        Require(root == 0 || root == 0x80000001 || root == 0x80000006);
        Require(key.find('"') == std::string::npos);
        done.emplace_back(command);
    }
    std::string logged;
    std::vector<std::string> done;
};

/// The commands of some lines, whatever is behind them.
std::vector<std::string> CommandsOf(const std::vector<std::string>& lines, const ScriptBody& body) {
    std::vector<std::string> commands;
    for (std::size_t i = body.first; i <= body.last && i < lines.size(); ++i)
        for (const char* command : {"regwrite", "dirmake"})
            if (LowerCase(lines[i].substr(0, lines[i].find(','))) == command)
                commands.emplace_back(command);
    return commands;
}

} // namespace

void CheckInput(const std::string& text) {
    const std::vector<std::string> lines = SplitScriptLines(text);
    Require(!lines.empty());
    std::size_t length = 0;
    for (const std::string& line : lines) {
        Require(line.find_first_of("\r\n") == std::string::npos);
        length += line.size();
    }
    const auto ends = std::ranges::count_if(text, [](char c) { return c == '\r' || c == '\n'; });
    Require(length + static_cast<std::size_t>(ends) == text.size());
    for (const char* section : {"[base]", "[plugins]"}) {
        const ScriptBody body = FindScriptBody(lines, section);
        Require(body.last < body.first || body.last < lines.size());
        Witness witness;
        std::vector<std::string> commands = CommandsOf(lines, body);
        try {
            RunScript(lines, section, {"C:\\tree", "D:\\"}, witness);
        } catch (const Failure&) { // an ordinary answer: what was done before it was in this order
            Require(witness.done.size() <= commands.size());
            commands.resize(witness.done.size());
        }
        Require(witness.done == commands);
    }
    Require(ExpandScriptVariables(text, {"P", "S"}).size() <= text.size() + 1);
}
