#include "script/modScriptText.h"

#include "ExpectedText.h"
#include "base/Failure.h"

#include <chrono>

using namespace vesk;

namespace {

using Lines = std::vector<std::string>;

/// Writes effects down between the log lines.
struct RecordingTarget : ScriptTarget {
    std::string seen;

    void AddLogLine(const std::string& line) override { seen += line + "\n"; }
    void CreateKey(std::uint32_t root, const std::string& key) override {
        seen += "key " + std::to_string(root) + " <" + key + ">\n";
    }
    void SetValue(std::uint32_t root, const std::string& key, const std::string& valueName,
                  const std::string& data, std::uint32_t type) override {
        seen += "value " + std::to_string(root) + " <" + key + "> <" + valueName + "> <" + data +
                "> " + std::to_string(type) + "\n";
    }
    void MakeFolder(const std::string& path) override { seen += "folder <" + path + ">\n"; }
};

} // namespace

TEST_CASE("lines end at CR LF, LF or CR") {
    CHECK(SplitScriptLines("") == Lines{""});
    CHECK(SplitScriptLines("a\r\nb\nc\rd") == Lines{"a", "b", "c", "d"});
    CHECK(SplitScriptLines("a\r\n") == Lines{"a"});
    CHECK(SplitScriptLines("a\n\r\n\r\rb") == Lines{"a", "", "", "", "b"});
}

TEST_CASE("a script that repeats its section line without end takes no longer than others") {
    std::string script;
    for (int i = 0; i < 200000; ++i)
        script += "[base]\n";
    const auto start = std::chrono::steady_clock::now();
    CHECK(FindScriptBody(SplitScriptLines(script), "[base]") == ScriptBody{200000, 199999});
    CHECK(std::chrono::steady_clock::now() - start < std::chrono::seconds(5));
}

TEST_CASE("which lines belong to a section, what each does, and what ends a run") {
    test::CheckAnswers("scripts", [](const std::string& script) {
        RecordingTarget target;
        const Lines lines = SplitScriptLines(ReplaceAll(script, " / ", "\n"));
        const ScriptBody body = FindScriptBody(lines, "[base]");
        target.seen =
            "lines " + std::to_string(body.first) + " to " + std::to_string(body.last) + "\n";
        try {
            RunScript(lines, "[base]", {"C:\\tree", "D:\\source"}, target);
        } catch (const Failure& failure) {
            target.seen += "fails: " + failure.reason + "\n";
        }
        return target.seen;
    });
}
