#include "Input.h"
#include "base/Failure.h"
#include "script/modScriptText.h"

#include <algorithm>

using namespace vesk;

namespace {

/// What a script would do, counted: no line does more than one thing.
struct Counter : ScriptTarget {
    void AddLogLine(const std::string& line) override {
        Require(line.find_first_of("\r\n") == std::string::npos);
    }
    void CreateKey(std::uint32_t, const std::string&) override { ++effects; }
    void SetValue(std::uint32_t, const std::string&, const std::string&, const std::string&,
                  std::uint32_t) override {
        ++effects;
    }
    void MakeFolder(const std::string&) override { ++effects; }
    std::size_t effects = 0;
};

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
        Counter counter;
        try {
            RunScript(lines, section, {"C:\\tree", "D:\\"}, counter);
        } catch (const Failure&) { // an ordinary answer
        }
        Require(counter.effects <= lines.size());
    }
    Require(ExpandScriptVariables(text, {"P", "S"}).size() <= text.size() + 1);
}
