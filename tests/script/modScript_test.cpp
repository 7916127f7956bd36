#include "script/modScript.h"

#include "TestFolder.h"
#include "base/Failure.h"
#include "base/modText.h"
#include "script/RegistryTestKey.h"
#include "script/clsRegistry.h"

using namespace vesk;
using namespace vesk::test;

namespace {

using Lines = std::vector<std::string>;
constexpr std::uint32_t kUser = 0x80000001;

} // namespace

TEST_CASE("a script writes the registry, makes folders and logs each action first") {
    const RegistryTestKey key;
    const TestFolder folder;
    Lines log;
    const ScriptContext context{[&](const std::string& line) { log.push_back(line); },
                                folder.Path(), "D:\\source"};
    const std::string script = ReplaceAll(R"([Base]
regwrite,HKCU,0x0,<key>\Demo\Deep
regwrite,HKCU,0x4,<key>\Demo,Count,16
regwrite,HKCU,0x4,<key>\Demo,Cut,0x10
regwrite,HKCU,0x1,<key>\Demo,Path,%SourcePath%\i386
regwrite,HKCU,0x2,<key>\Demo,Expand,%ProgramPath%
regwrite,HKCU,0x1,<key>\None,Lost,x
regwrite,HKLM,0x1,<key>\Demo,Path,lost
dirmake,"%ProgramPath%\made"
[plugins]
dirmake,%ProgramPath%\not
)",
                                          "<key>", kTestKey);
    ProcessScript(folder.Write("x.script", script), "[base]", context);
    CHECK(log.size() == 9);
    CHECK(log.front() == "Processing script: " + (folder / "x.script"));
    CHECK(log.back() == "  Directory Create: " + (folder / "made"));
    CHECK(FolderExists(folder / "made"));
    CHECK_FALSE(FolderExists(folder / "not"));
    const std::string told = RegQuery();
    CAPTURE(told);
    for (const char* part : {"\\Demo\\Deep\n", " Count REG_DWORD 0x10\n", " Cut REG_DWORD 0x0\n",
                             " Path REG_SZ D:\\source\n"})
        CHECK(told.find(part) != std::string::npos);
    for (const char* part : {"Expand", "Lost", "lost"})
        CHECK(told.find(part) == std::string::npos);
}

TEST_CASE("the first failure ends a script and what was done before stays") {
    const RegistryTestKey key;
    const TestFolder folder;
    Lines log;
    const ScriptContext context{[&](const std::string& line) { log.push_back(line); },
                                folder.Path(), ""};
    folder.Write("there\\file", "x");
    struct Row {
        const char* failing;
        std::size_t logged;
    };
    for (const Row& row :
         {Row{"", 0}, Row{"dirmake,%ProgramPath%\\there", 1}, Row{"dirmake,%ProgramPath%\\a\\b", 1},
          Row{"dirmake,", 1}, Row{"dirmake", 0},
          Row{"regwrite,HKCU,0x7,Software\\VeskBuilderTest,List,a,b", 1},
          Row{"regwrite,HKCU,0x4,Software\\VeskBuilderTest,Number,text", 1},
          Row{"regwrite,HKCU,0x4,Software\\VeskBuilderTest,Number", 0}}) {
        CAPTURE(row.failing);
        log.clear();
        const std::string script = folder.Write(
            "x.script", "[base]\ndirmake,%ProgramPath%\\before\n" + std::string(row.failing) +
                            "\ndirmake,%ProgramPath%\\after\n");
        CHECK_THROWS_AS(ProcessScript(script, "[base]", context), Failure);
        CHECK(log.size() == 2 + row.logged);
        CHECK(FolderExists(folder / "before"));
        CHECK_FALSE(FolderExists(folder / "after"));
        RemoveFolder(folder / "before");
    }
    CHECK(clsRegistry::IsPathEmpty(kUser, kTestKey));
    log.clear();
    CHECK_THROWS_AS(ProcessScript(folder / "none.script", "[base]", context), Failure);
    CHECK(log == Lines{"Processing script: " + (folder / "none.script")});
}

TEST_CASE("a line is found in a file as it stands") {
    const TestFolder folder;
    const std::string path = folder.Write("x.script", "a\r\n[plugins]\r\n [other]");
    CHECK(IsLineInFile(path, "[plugins]"));
    CHECK_FALSE(IsLineInFile(path, "[Plugins]"));
    CHECK_FALSE(IsLineInFile(path, "[other]"));
    CHECK(IsLineInFile(folder.Write("empty.script", ""), ""));
    CHECK_THROWS_AS(IsLineInFile(folder / "none", "a"), Failure);
    CHECK(ReadFileLines(folder / "none").empty());
}
