#include "build/modFileOperations.h"

#include "RecordingFrontEnd.h"
#include "TestFolder.h"
#include "base/Failure.h"
#include "build/BuildLog.h"

using namespace vesk;
using vesk::test::RecordingFrontEnd;
using vesk::test::TestFolder;

TEST_CASE("files are found depth first; empty ones are left out") {
    const TestFolder folder;
    for (const char* name : {"b.inf", "a\\z.inf", "a\\deep\\y.INF", "..x\\w.inf", "a\\other.txt"})
        folder.Write(name, "x");
    folder.Write("empty.inf", "");
    CreateFolder(folder / "folder.inf");
    std::string pattern;
    const std::string root = folder.Path() + "\\";
    CHECK(FindFiles(root, pattern) == std::vector<std::string>{root + "b.inf", root + "..x\\w.inf",
                                                               root + "a\\z.inf",
                                                               root + "a\\deep\\y.INF"});
    CHECK(pattern == "*.inf");
    CHECK(FindFiles(root + "none\\", pattern).empty());
}

TEST_CASE("removals write their line first, also when they fail") {
    const TestFolder folder;
    Catalogue catalogue;
    const BuildInputs inputs;
    RecordingFrontEnd frontEnd;
    const BuildContext context{inputs, catalogue, frontEnd, {}};
    const std::string file = folder.Write("sub\\x.txt", "x");
    DeleteFileLogged(context, file);
    DeleteFolderLogged(context, folder / "sub");
    CHECK_FALSE(FolderExists(folder / "sub"));
    CHECK_THROWS_AS(DeleteFileLogged(context, file), Failure);
    CHECK_THROWS_AS(DeleteFolderLogged(context, folder / "sub"), Failure);
    LogIndented(context, "text");
    CHECK(frontEnd.lines ==
          std::vector<std::string>{"Deleting File: " + file, "Deleting Folder: " + (folder / "sub"),
                                   "Deleting File: " + file, "Deleting Folder: " + (folder / "sub"),
                                   "text  "});
    CHECK(frontEnd.statuses.front() == "Deleting file");
    CHECK(frontEnd.statuses.back() == "Deleting folder");
}

TEST_CASE("log modes: shown and saved, with a blank line, shown only") {
    BuildLog log;
    log.Add("one", LogMode::Line);
    CHECK(log.Add("two", LogMode::LineAndBlank) == std::vector<std::string>{"two", ""});
    log.Add("three", LogMode::ListOnly);
    CHECK(log.Lines() == std::vector<std::string>{"one", "two", "", "three"});
    CHECK(log.SavedText() == "one\r\ntwo\r\n\r\n");
    CHECK_FALSE(log.HasWarnings());
    log.Add("Archive: C:\\x.zip [not found]", LogMode::Line);
    CHECK(log.HasWarnings());

    const TestFolder folder;
    SaveBuildLog(folder.Path() + "\\", "a long text");
    SaveBuildLog(folder.Path() + "\\", "short");
    CHECK(ReadWholeFile(folder / "veskbuider.log") == "short");
    SaveBuildLog(folder.Path() + "\\", "");
    CHECK_FALSE(FileExists(folder / "veskbuider.log"));
}
