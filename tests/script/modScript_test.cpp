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

struct Fixture {
    RegistryTestKey key;
    TestFolder folder;
    Lines log;

    /// Runs the "[base]" section of a script. @return whether it came to its end
    bool Run(const std::string& script) {
        log.clear();
        const std::string path = folder.Write("x.script", ReplaceAll(script, "<key>", kTestKey));
        try {
            ProcessScript(path, "[base]",
                          {[this](const std::string& line) { log.push_back(line); },
                           [](const std::string&, const std::string&) {}, folder.Path(),
                           "D:\\source"});
        } catch (const Failure&) {
            return false;
        }
        return true;
    }
};

} // namespace

// What a whole script does is compared with a manifest, where the console builds.
TEST_CASE_FIXTURE(Fixture, "the first failure ends a script and what was done before stays") {
    folder.Write("there\\file", "x");
    for (const std::string failing :
         {"dirmake,%ProgramPath%\\there", "dirmake,%ProgramPath%\\a\\b", "dirmake,",
          "regwrite,HKCU,0x7,<key>,List,a,b", "regwrite,HKCU,0x4,<key>,Number,text"}) {
        CAPTURE(failing);
        CHECK_FALSE(Run("[base]\ndirmake,%ProgramPath%\\before\n" + failing +
                        "\ndirmake,%ProgramPath%\\after\n"));
        CHECK(log.size() == 3);
        CHECK(FolderExists(folder / "before"));
        CHECK_FALSE(FolderExists(folder / "after"));
        TestFolder::RemoveTree(Widen(folder / "before"));
    }
    CHECK(clsRegistry::IsPathEmpty(0x80000001, kTestKey));
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
