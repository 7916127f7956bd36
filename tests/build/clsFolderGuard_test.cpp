#include "build/clsFolderGuard.h"

#include "ExpectedText.h"
#include "TestFolder.h"
#include "base/modSpecialFolder.h"
#include "build/clsBuildLock.h"
#include "build/clsInstallFolder.h"

#include <array>

using namespace vesk;
using namespace vesk::test;

// Only asks: nothing is emptied here.
TEST_CASE("the system's and the user's own folders are guarded") {
    const TestFolder folder;
    const auto guard = clsFolderGuard::OfSystem(folder / "program\\", folder / "cd\\");
    folder.Write("program\\x", "x");
    folder.Write("cd\\x", "x");
    for (const SpecialFolder special :
         {SpecialFolder::Windows, SpecialFolder::System, SpecialFolder::Fonts,
          SpecialFolder::CommonAppData, SpecialFolder::ProgramFiles,
          SpecialFolder::ProgramFilesCommon, SpecialFolder::UserProfile, SpecialFolder::AppData,
          SpecialFolder::LocalAppData, SpecialFolder::Documents, SpecialFolder::Desktop,
          SpecialFolder::StartMenu, SpecialFolder::CommonStartMenu, SpecialFolder::CommonDesktop}) {
        const std::string path = SpecialFolderPath(special);
        CAPTURE(path);
        REQUIRE_FALSE(path.empty());
        CHECK_FALSE(guard.Objection(path).empty());
        CHECK_FALSE(guard.Objection(ParentOf(path)).empty());
    }
    for (const SpecialFolder whole :
         {SpecialFolder::Windows, SpecialFolder::CommonAppData, SpecialFolder::ProgramFilesCommon})
        CheckHolds(guard.Objection(SpecialFolderPath(whole) + "\\new\\tree"), "lies in");
    CheckHolds(guard.Objection(folder.Path()), "holds this program");
    CheckHolds(guard.Objection(folder / "cd"), "holds the folder chosen as Windows source");
    CHECK(guard.Objection(folder / "program\\tree").empty());
    // Of a whole drive that is the source only I386 is guarded.
    const std::string drive = folder.Path().substr(0, 3);
    const bool isNew = CreateDirectoryA((drive + "I386").c_str(), nullptr) != 0;
    const auto ofDrive = clsFolderGuard::OfSystem("", drive);
    CheckHolds(ofDrive.Objection(drive + "I386\\new"), "lies in");
    CHECK(ofDrive.Objection(drive + "Vesk Builder Test").empty());
    if (isNew)
        RemoveDirectoryA((drive + "I386").c_str());
    std::string temporary(MAX_PATH, '\0');
    temporary.resize(GetTempPathA(MAX_PATH, temporary.data()));
    const auto ofSystem = clsFolderGuard::OfSystem("", "");
    CheckHolds(ofSystem.Objection(temporary), "the temporary folder");
    CheckHolds(ofSystem.Objection(SpecialFolderPath(SpecialFolder::UserProfile) + "\\Downloads"),
               "one of the system's folders");
    CHECK(ofSystem.Objection("C:\\Vesk Builder Test").empty());
    // The catalogue may place the tree among the programs, but nothing else goes there.
    const std::string amongPrograms = SpecialFolderPath(SpecialFolder::ProgramFiles) + "\\VeskLive";
    CHECK(guard.Objection(amongPrograms).empty());
    CHECK(guard.KeepsForeign(amongPrograms));
    CHECK_FALSE(guard.KeepsForeign(folder / "tree"));
    CHECK(guard.KeepsForeign(ParentOf(SpecialFolderPath(SpecialFolder::AppData)) + "\\tree"));
    CHECK_FALSE(guard.KeepsForeign(SpecialFolderPath(SpecialFolder::Desktop) + "\\tree"));
    // As Windows XP and Windows 7 have them.
    CHECK(clsFolderGuard::AmongData(L"C:\\D\\ann", {LR"(c:\d\Ann\Application Data)",
                                                    LR"(C:\D\ann\Local Settings\Application Data)",
                                                    LR"(C:\U\ann\AppData\Roaming)", L""}) ==
          std::vector<std::wstring>{LR"(c:\d\Ann\Application Data)", LR"(C:\D\ann\Local Settings)",
                                    LR"(C:\U\ann\AppData)", L""});
}

TEST_CASE("so are those named by letters that the code page lacks, under any other name") {
    const TestFolder folder;
    const std::wstring user = Widen(folder.Path()) + L"\\\x0416";
    REQUIRE(CreateDirectoryW(user.c_str(), nullptr) != 0);
    std::wstring name(MAX_PATH, L'\0');
    name.resize(GetShortPathNameW(user.c_str(), name.data(), MAX_PATH));
    const auto other = NarrowedExactly(name);
    if (!other)
        return; // this volume has no short names
    struct Variable {
        const wchar_t* name;
        const wchar_t* folder; ///< Of the user's.
        std::wstring before;
    };
    std::array<Variable, 3> variables{{{L"TMP", L"\\Temp", L""},
                                       {L"ProgramW6432", L"\\Programs", L""},
                                       {L"USERPROFILE", L"", L""}}};
    for (Variable& variable : variables) {
        variable.before.resize(MAX_PATH);
        variable.before.resize(
            GetEnvironmentVariableW(variable.name, variable.before.data(), MAX_PATH));
        SetEnvironmentVariableW(variable.name, (user + variable.folder).c_str());
    }
    const auto guard = clsFolderGuard::OfSystem("", "");
    for (const Variable& variable : variables)
        SetEnvironmentVariableW(variable.name,
                                variable.before.empty() ? nullptr : variable.before.c_str());
    CheckHolds(guard.Objection(*other + "\\Temp"), "the temporary folder");
    CheckHolds(guard.Objection(*other + "\\Downloads"), "one of the system's folders");
    CHECK(guard.KeepsForeign(*other + "\\Programs\\tree"));
}

TEST_CASE("no build works in, below or above another one's folder") {
    const TestFolder folder;
    const clsFolderGuard none({});
    const auto lock = [&](const std::string& name) {
        return clsBuildLock(clsInstallFolder(folder / name, none));
    };
    for (const bool exists : {false, true}) {
        CAPTURE(exists);
        if (exists)
            CreateFolderPath(folder / "a\\tree\\Plugin");
        const clsBuildLock held = lock("a\\tree");
        for (const char* name :
             {"a\\tree", "A\\TREE\\", "a\\.\\tree", "a\\tree\\Plugin", R"(a\tree\new\deep)"})
            CHECK_THROWS_AS(lock(name), FolderRefused);
        if (exists)
            CHECK_THROWS_AS(lock("a"), FolderRefused);
        CHECK_NOTHROW(lock("a\\other"));
        CHECK_NOTHROW(lock("a\\tree2"));
        // The build removes its folder and makes it again.
        TestFolder::RemoveTree(Widen(folder / "a\\tree"));
        CHECK_THROWS_AS(lock("a\\tree"), FolderRefused);
        CreateFolderPath(folder / "a\\tree");
        CHECK_THROWS_AS(lock("a\\tree"), FolderRefused);
    }
    CHECK_NOTHROW(lock("a\\tree"));
}

TEST_CASE("an installation folder tells what stands in it") {
    const TestFolder folder;
    const clsInstallFolder tree(folder / "tree\\", clsFolderGuard({}));
    using Kind = FolderContent::Kind;
    CHECK(tree.Path() == folder / "tree");
    CHECK(tree.PluginFolder() == folder / "tree\\Plugin");
    CHECK(tree.Content().kind == Kind::Missing);
    CreateFolderPath(folder / "tree");
    CHECK(tree.Content().kind == Kind::Empty);
    CreateFolderPath(folder / "tree\\sub\\deep");
    CHECK(tree.Content().kind == Kind::Foreign);
    CHECK(tree.Content().ForeignWords() == "it holds folders that no build made");
    folder.Write(R"(tree\sub\deep\a)", "x");
    CHECK(tree.Content().ForeignWords() == "it holds 1 file that no build made");
    folder.Write("tree\\b", "x");
    CHECK(tree.Content().ForeignWords() == "it holds 2 files that no build made");
    for (const char* trace : {"vesklive.ini", "pebuilder.exe", "input.inf"}) {
        folder.Write(std::string("tree\\sub\\") + trace, "x"); // elsewhere it means nothing
        CHECK(tree.Content().kind == Kind::Foreign);
        const std::string path = folder.Write(std::string("tree\\") + trace, "x");
        CHECK(tree.Content().kind == Kind::EarlierBuild);
        RemoveFile(path);
    }
    // The mark stays until something else shows that a build made the tree.
    tree.Mark();
    CHECK(tree.Content().kind == Kind::EarlierBuild);
    tree.Unmark();
    CHECK(tree.Content().kind == Kind::EarlierBuild);
    folder.Write("tree\\vesklive.ini", "x");
    tree.Unmark();
    CHECK_FALSE(FileExists(folder / "tree\\" + clsInstallFolder::kMarkName));
}
