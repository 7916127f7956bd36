#include "script/modScriptText.h"

#include "base/Failure.h"

#include <chrono>
#include <doctest/doctest.h>

using namespace vesk;

namespace {

using Lines = std::vector<std::string>;

/// Writes effects down between the log lines.
struct RecordingTarget : ScriptTarget {
    Lines seen;

    void AddLogLine(const std::string& line) override { seen.push_back(line); }
    void CreateKey(std::uint32_t root, const std::string& key) override {
        seen.push_back("key " + std::to_string(root) + " " + key);
    }
    void SetValue(std::uint32_t root, const std::string& key, const std::string& valueName,
                  const std::string& data, std::uint32_t type) override {
        seen.push_back("value " + std::to_string(root) + " " + key + " " + valueName + " " + data +
                       " " + std::to_string(type));
    }
    void MakeFolder(const std::string& path) override { seen.push_back("folder " + path); }
};

const ScriptVariables kVariables = {"C:\\tree", "D:\\source"};
const std::string kFails = "fails";

/// What the "[base]" section of a script does; "fails" at the end when it ends in a failure.
Lines Run(const std::string& script) {
    RecordingTarget target;
    try {
        RunScript(SplitScriptLines(script), "[base]", kVariables, target);
    } catch (const Failure&) {
        target.seen.push_back(kFails);
    }
    return target.seen;
}

} // namespace

TEST_CASE("lines end at CR LF, LF or CR") {
    CHECK(SplitScriptLines("") == Lines{""});
    CHECK(SplitScriptLines("a\r\nb\nc\rd") == Lines{"a", "b", "c", "d"});
    CHECK(SplitScriptLines("a\r\n") == Lines{"a"});
    CHECK(SplitScriptLines("a\n\r\n\r\rb") == Lines{"a", "", "", "", "b"});
}

TEST_CASE("which lines belong to a section") {
    struct BodyRow {
        const char* script;
        ScriptBody expected;
    };
    for (const BodyRow& row : {
             BodyRow{"x\n[BASE]\na\nb\n[abc]\nc", {2, 3}},
             BodyRow{"[base]\na\n[abc]\nb\n[abc]\nc", {1, 1}},  // the first end counts
             BodyRow{"[base]\na\n[ab]\nb", {1, 3}},             // 1 & 4 is 0: no end
             BodyRow{"[base]\na\n]x[\nb", {1, 1}},              // 1 & 3
             BodyRow{"[base]\na\n[\n]\nb", {1, 4}},             // one bracket alone never ends it
             BodyRow{"[base]\na\nsee [1] there\nb", {1, 1}},    // 5 & 7
             BodyRow{"a\n [base]\n[base] \n[basé]", {0, 3}},    // absent: the whole file
             BodyRow{"a\n[Base]", {2, 1}},                      // its last line: nothing
             BodyRow{"[base]\na\n[abc]\n[base]\nb\nc", {4, 1}}, // a kept end before the start
             BodyRow{"[base]\na\n[abc]\n[base]\nb\n[abc]\nc", {4, 4}},
             BodyRow{"[base]\n[abc]\na", {1, 2}}, // the end of an empty first section is lost
         }) {
        CAPTURE(row.script);
        const ScriptBody body = FindScriptBody(SplitScriptLines(row.script), "[base]");
        CHECK(body.first == row.expected.first);
        CHECK(body.last == row.expected.last);
    }
}

TEST_CASE("a script that repeats its section line without end takes no longer than others") {
    std::string script;
    for (int i = 0; i < 200000; ++i)
        script += "[base]\n";
    const auto start = std::chrono::steady_clock::now();
    CHECK(FindScriptBody(SplitScriptLines(script), "[base]") == ScriptBody{200000, 199999});
    CHECK(std::chrono::steady_clock::now() - start < std::chrono::seconds(5));
}

TEST_CASE("variables stand at the very start of an argument") {
    for (const auto& [argument, expected] :
         {std::pair{"%ProgramPath%plugin", "C:\\treeplugin"},
          {R"(  "%ProgramPath%\a"%ProgramPath%b )", "C:\\tree\\ab"},
          {"%SourcePath%\\i386", "D:\\source"},
          {R"(%"Program"Path%)", "C:\\tree"},
          {R"( "a b" )", "a b"}}) {
        CAPTURE(argument);
        CHECK(ExpandScriptVariables(argument, kVariables) == expected);
    }
    for (const char* argument : {"x%ProgramPath%", "%programpath%", "%%ProgramPath%", "%", ""})
        CHECK(ExpandScriptVariables(argument, kVariables) == argument);
}

TEST_CASE("what a line does, and what ends a run") {
    const std::string user = "2147483649"; // 0x80000001
    struct Row {
        const char* script;
        Lines expected;
    };
    for (const Row& row : {
             Row{"free text\n; regwrite\n[abc", {}},
             Row{"dirmake,\"%ProgramPath%\\a\" ,ignored\nDirMake,b",
                 {"  Directory Create: C:\\tree\\a", "folder C:\\tree\\a", "  Directory Create: b",
                  "folder b"}},
             Row{"dircopy,a,b\ndirmove\ndirdelete,x\n dirmake,no\ndirmake,x",
                 {"  Directory Create: x", "folder x"}},
             Row{"dirmake,a\n\ndirmake,b", {"  Directory Create: a", "folder a", kFails}},
             Row{"dirmake", {kFails}},
             Row{R"(regwrite,HKCU,0x0," Software\Demo ")",
                 {"  Registry Write: HKCU\\Software\\Demo", "key " + user + " Software\\Demo"}},
             Row{"regwrite,HKCU,0x0,K,name", {kFails}},
             Row{"regwrite,HKCU,0x0,K,name,data,more",
                 {"  Registry Write: HKCU\\K", "key " + user + " K"}},
             Row{"regwrite,HKCU,0x1", {kFails}},
             Row{"regwrite,HKCU,0x1,K,name", {kFails}},
             Row{"regwrite", {kFails}},
             Row{R"(regwrite,HKCU,0x4,K, "Mode" , 0x10 )",
                 {R"(  Registry Write: HKCU\K "Mode" = 0)", "value " + user + " K Mode 0 4"}},
             Row{"regwrite,HKCU,0x1,K,n,fXyz",
                 {R"(  Registry Write: HKCU\K "n" = z)", "value " + user + " K n z 1"}},
             Row{R"(regwrite,HKLM,0x3,K,n,a," %SourcePath%x")",
                 {R"(  Registry Write: HKLM\K "n" = a,D:\source)",
                  "value 2147483654 K n a,D:\\source 3"}}, // 0x80000006
             Row{"regwrite,HKCU,0x7,K,n,a,0x10",
                 {R"(  Registry Write: HKCU\K "n" = a,0x10)", "value " + user + " K n a,0x10 7"}},
             Row{"regwrite,HKCU,0x2,K,n,a,b,c",
                 {R"(  Registry Write: HKCU\K "n" = a)", "value " + user + " K n a 2"}},
             Row{"regwrite, HKCU,0x1,K,n,a",
                 {R"(  Registry Write:  HKCU\K "n" = a)", "value 0 K n a 1"}},
             Row{"regwrite,HKCU,0x4,K,n,1\nregwrite,hklm, 0x1,K,n,2\nregwrite,,0x5,K,n,3",
                 {R"(  Registry Write: HKCU\K "n" = 1)", "value " + user + " K n 1 4",
                  R"(  Registry Write: hklm\K "n" = 2)", "value " + user + " K n 2 4",
                  R"(  Registry Write: \K "n" = 3)", "value " + user + " K n 3 4"}},
             Row{"regwrite,HKCU,first,K", {"  Registry Write: HKCU\\K", "key " + user + " K"}},
         }) {
        CAPTURE(row.script);
        CHECK(Run(row.script) == row.expected);
    }
}
