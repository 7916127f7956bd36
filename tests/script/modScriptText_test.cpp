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
    std::string text;
    for (const char* script : {
             // Where "[base]" begins and ends; each line that is run makes a folder.
             "x\n[BASE]\ndirmake,a\ndirmake,b\n[abc]\ndirmake,c",
             "[base]\ndirmake,a\n[abc]\ndirmake,b\n[abc]\ndirmake,c", // the first end counts
             "[base]\ndirmake,a\n[ab]\ndirmake,b",                    // 1 & 4 is 0: no end
             "[base]\ndirmake,a\n]x[\ndirmake,b",                     // 1 & 3
             "[base]\ndirmake,a\n[\n]\ndirmake,b",          // one bracket alone never ends it
             "[base]\ndirmake,a\nsee [1] there\ndirmake,b", // 5 & 7
             "dirmake,a\n [base]\n[base] \n[bas\xE9]",      // absent: the whole file
             "dirmake,a\n[Base]",                           // its last line: nothing
             "[base]\ndirmake,a\n[abc]\n[base]\ndirmake,b\ndirmake,c", // a kept end before it
             "[base]\ndirmake,a\n[abc]\n[base]\ndirmake,b\n[abc]\ndirmake,c",
             "[base]\n[abc]\ndirmake,a", // the end of an empty first section is lost
             // Variables stand at the very start of an argument.
             "dirmake,%ProgramPath%plugin",
             R"(dirmake,  "%ProgramPath%\a"%ProgramPath%b )",
             "dirmake,%SourcePath%\\i386",
             R"(dirmake,%"Program"Path%)",
             R"(dirmake, "a b" )",
             "dirmake,x%ProgramPath%\ndirmake,%programpath%\ndirmake,%%ProgramPath%\ndirmake,%",
             // What a line does.
             "free text\n; regwrite\n[abc",
             "dirmake,\"%ProgramPath%\\a\" ,ignored\nDirMake,b",
             "dircopy,a,b\ndirmove\ndirdelete,x\n dirmake,no\ndirmake,x",
             "dirmake,a\n\ndirmake,b",
             "dirmake",
             R"(regwrite,HKCU,0x0," Software\Demo ")",
             "regwrite,HKCU,0x0,K,name",
             "regwrite,HKCU,0x0,K,name,data,more",
             "regwrite,HKCU,0x1",
             "regwrite,HKCU,0x1,K,name",
             "regwrite",
             R"(regwrite,HKCU,0x4,K, "Mode" , 0x10 )",
             "regwrite,HKCU,0x1,K,n,fXyz",
             R"(regwrite,HKLM,0x3,K,n,a," %SourcePath%x")",
             "regwrite,HKCU,0x7,K,n,a,0x10",
             "regwrite,HKCU,0x2,K,n,a,b,c",
             "regwrite, HKCU,0x1,K,n,a",
             "regwrite,HKCU,0x4,K,n,1\nregwrite,hklm, 0x1,K,n,2\nregwrite,,0x5,K,n,3",
             "regwrite,HKCU,first,K",
         }) {
        RecordingTarget target;
        const Lines lines = SplitScriptLines(script);
        const ScriptBody body = FindScriptBody(lines, "[base]");
        text += "= " + ReplaceAll(script, "\n", " / ") + "\nlines " + std::to_string(body.first) +
                " to " + std::to_string(body.last) + "\n";
        try {
            RunScript(lines, "[base]", {"C:\\tree", "D:\\source"}, target);
        } catch (const Failure& failure) {
            target.seen += "fails: " + failure.reason + "\n";
        }
        text += target.seen;
    }
    test::CheckExpected("scripts", text);
}
