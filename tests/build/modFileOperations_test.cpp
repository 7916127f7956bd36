#include "build/modFileOperations.h"

#include "RecordingFrontEnd.h"
#include "TestFolder.h"
#include "base/Failure.h"
#include "build/clsBuildLog.h"

using namespace vesk;
using namespace vesk::test;

TEST_CASE("files are found depth first; empty ones are left out") {
    const TestFolder folder;
    for (const char* name : {"b.inf", "a\\z.inf", "a\\deep\\y.INF", "..x\\w.inf", "a\\other.txt"})
        folder.Write(name, "x");
    folder.Write("empty.inf", "");
    CreateFolder(folder / "folder.inf");
    std::string pattern;
    const std::string root = folder.Path() + "\\";
    CHECK(FindFiles(root, pattern, "").paths ==
          std::vector<std::string>{root + "b.inf", root + "..x\\w.inf", root + "a\\z.inf",
                                   root + "a\\deep\\y.INF"});
    CHECK(pattern == "*.inf");
    CHECK(FindFiles(root + "none\\", pattern, "").paths.empty());
    std::size_t folders = 0; // a window must not wait for the end of a large tree
    FindFiles(root, pattern, "", [&] { ++folders; });
    CHECK(folders == 5);
}

TEST_CASE("files whose names the code page lacks are found by names that lead to them") {
    const TestFolder folder;
    const std::wstring name = Widen(folder.Path()) + L"\\\x0394\x0436";
    for (const std::wstring& path : {name + L".inf", name + L"\\x.inf"}) {
        CreateDirectoryW(name.c_str(), nullptr);
        const FileHandle file(
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
        DWORD written = 0;
        REQUIRE(WriteFile(file.Get(), "x", 1, &written, nullptr) != 0);
    }
    std::string pattern;
    const FoundFiles found = FindFiles(folder.Path() + "\\", pattern, "not edited");
    CHECK(found.paths.size() + found.problems.size() == 2); // the latter where names have one form
    for (const std::string& path : found.paths) {
        CHECK(ReadWholeFile(path) == "x");
        CHECK(PlainFileExists(path));
    }
}

TEST_CASE("removals write their line first, and report what stays") {
    const TestFolder folder;
    Catalogue catalogue;
    const BuildInputs inputs{clsInstallFolder(folder / "tree", clsFolderGuard({})), "", "", {}};
    RecordingFrontEnd frontEnd;
    const clsSha256List noList;
    const clsBuildContext context = frontEnd.Context(inputs, catalogue, noList);
    const std::string file = folder.Write("tree\\sub\\x.txt", "x");
    const std::string readOnly = folder.Write(R"(tree\sub\deep\read-only.txt)", "x");
    SetFileAttributesA(readOnly.c_str(), FILE_ATTRIBUTE_READONLY);
    const std::string locked = folder / "tree\\sub\\a-locked.dll";
    CopyFileOver(std::string(_pgmptr), locked);
    SetFileAttributesA(locked.c_str(), FILE_ATTRIBUTE_READONLY);
    std::wstring deep = LongPath(Widen(folder / "tree\\sub")); // until it is too long for the rest
    for (int level = 0; level < 3; ++level)
        REQUIRE(CreateDirectoryW((deep += L"\\" + std::wstring(100, L'd')).c_str(), nullptr) != 0);
    inputs.installFolder.Mark();
    const auto sub = clsRemovableTree::Below(inputs.installFolder, "\\sub");
    DeleteFileLogged(context, file);
    CHECK_THROWS_AS(DeleteFileLogged(context, file), Failure);
    {
        // What is loaded is not merely open: it seems to be the attribute that keeps it.
        const UniqueHandle<FreeLibrary, HMODULE> lock(
            LoadLibraryExA(locked.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES));
        CHECK_FALSE(DeleteFolderLogged(context, clsRemovableTree::Of(inputs.installFolder)));
    }
    CHECK((GetFileAttributesA(locked.c_str()) & FILE_ATTRIBUTE_READONLY) != 0);
    CHECK(inputs.installFolder.Content().kind == FolderContent::Kind::EarlierBuild); // still marked
    CHECK_FALSE(FileExists(readOnly));
    REQUIRE(frontEnd.problems.size() == 1);
    CHECK(frontEnd.problems[0].starts_with(locked + ": not removed, "));
    CreateFolder(sub.Path() + "\\shown");
    FileHandle shown(CreateFileA((sub.Path() + "\\shown").c_str(),
                                 FILE_LIST_DIRECTORY, // by Explorer
                                 FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                 OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    const clsPatience::Meanwhile closing(clsPatience::OfProgram(), [&] { shown.Reset(); });
    CHECK(DeleteFolderLogged(context, sub));
    CHECK_FALSE((shown || FolderExists(sub.Path())));
    CHECK(DeleteFolderLogged(context, sub)); // nothing is there: that is no problem
    for (int number = 0; number < 64; ++number)
        folder.Write("tree\\sub\\" + std::to_string(number), "");
    int rests = 0; // in which a window stays alive
    CHECK(sub.Remove([&] { ++rests; }).empty());
    CHECK(rests == 1);
    CHECK(frontEnd.problems.size() == 1);
    CHECK_THROWS_AS(clsRemovableTree::Below(inputs.installFolder, "\\sub\\..\\.."), Failure);
    LogIndented(context, "text");
    CHECK(frontEnd.lines.back() == "text  ");
    CHECK(frontEnd.statuses.front() == "Deleting file");
    CHECK(frontEnd.statuses.back() == "Deleting folder");
}

TEST_CASE("log modes: shown and saved, with a blank line, shown only") {
    clsBuildLog log;
    log.Add("one", LogMode::Line);
    CHECK(log.Add("two", LogMode::LineAndBlank) == std::vector<std::string>{"two", ""});
    log.Add("three", LogMode::ListOnly);
    CHECK(log.Lines() == std::vector<std::string>{"one", "two", "", "three"});
    CHECK(log.SavedText() == "one\r\ntwo\r\n\r\n");
    CHECK_FALSE(log.HasWarnings());
    log.Add("Archive: C:\\x.zip [not found]", LogMode::Line);
    CHECK(log.HasWarnings());
}
