#include "Growth.h"
#include "WizardSteps.h"
#include "base/modText.h"
#include "build/clsBuildLock.h"
#include "build/clsBuildLog.h"
#include "source/WindowsCd.h"

using namespace vesk;
using namespace vesk::test;

TEST_CASE("a build with problems lists them, to be read, copied and found again on disk") {
    ProgramFolder program;
    CatalogueEntry more = program.catalogue.plugins[1];
    more.enabled = true;
    program.catalogue.plugins.resize(40, more); // their lines push the warning out of sight
    program.Save();
    RemoveFile(program.Path() + "Alpha.zip");
    RemoveFile(program.Path() + "Gamma.zip");
    program.Folder().Write(std::string("program\\") + kLogFileName + "\\in the way", "x");
    const Wizard wizard(program);
    wizard.GoToSummary();
    CheckStarts(wizard.ClickAndAnswer(IDC_CMD_NEXT, "Vesk Builder", IDOK),
                "The log could not be saved: ");
    wizard.AwaitFinish();
    CheckStarts(wizard.Heading(), "Built, with ");

    const auto lines = wizard.LogLines();
    const auto warning = std::ranges::find_if(lines, IsWarningLine) - lines.begin();
    const LRESULT top = SendMessageA(wizard.Control(IDC_LST_PROGRESS), LB_GETTOPINDEX, 0, 0);
    CHECK(top <= warning);
    CHECK(warning - top < 5);
    CHECK(SendMessageA(wizard.Control(IDC_LST_PROGRESS), LB_GETCARETINDEX, 0, 0) == warning);

    const std::string saved = ReadWholeFile(program.Path() + kProblemsFileName);
    CHECK(wizard.Text(IDC_CMD_PROBLEMS) == "&Problems (2)...");
    SetWindowPos(wizard.Window(), nullptr, 40, 30, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    wizard.Click(IDC_CMD_PROBLEMS);
    const HWND dialog = wizard.AwaitDialog(""); // its title tells their number
    wizard.CheckShows(dialog, "problems");
    CheckGrows(dialog,
               {{IDC_LST_NOT_DONE, {0, 0, 200, 100}},
                {IDC_TXT_NOT_DONE, {0, 100, 200, 100}},
                {IDC_CMD_COPY, {200, 100, 200, 100}},
                {IDCANCEL, {200, 100, 200, 100}}},
               [] {});
    ClickIn(dialog, IDC_CMD_COPY);
    wizard.AwaitClipboard(saved); // no line is selected: all of them
    const HWND list = GetDlgItem(dialog, IDC_LST_NOT_DONE);
    PostMessageA(list, WM_KEYDOWN, VK_END, 0);
    AWAIT(wizard, Holds(TextIn(dialog, IDC_TXT_NOT_DONE), "Gamma.zip"));
    PostMessageA(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(list), TRUE);
    AWAIT(wizard, wizard.Focus() == list);
    wizard.PressWithControl('C');
    wizard.AwaitClipboard(TextIn(dialog, IDC_TXT_NOT_DONE) + "\r\n");
    wizard.PressWithControl('A');
    AWAIT(wizard, SendMessageA(list, LVM_GETSELECTEDCOUNT, 0, 0) == 2);
    wizard.Answer(dialog, IDCANCEL);
    wizard.Finish();
}

TEST_CASE("the password of an archive is asked for, again while it is wrong, and can be skipped") {
    ProgramFolder program;
    program.AddBase("Opened", "opened.zip",
                    {TestMember::Encrypted("opened.txt"), TestMember::Encrypted("too.txt")});
    program.AddBase("Skipped", "skipped.zip", {TestMember::Encrypted("skipped.txt")});
    program.Save();
    const Wizard wizard(program);
    wizard.GoToSummary();
    wizard.Click(IDC_CMD_NEXT);
    const HWND bar = wizard.Control(IDC_BAR_OVERALL);
    const auto answer = [&](const std::string& text, const std::string& name) {
        const HWND box = wizard.AwaitDialog("Please Enter The Password!");
        if (!name.empty())
            wizard.CheckShows(box, name);
        const HWND field = GetDlgItem(box, IDC_TXT_PASSWORD);
        SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"p\x012B"));
        CHECK_FALSE(IsWindowEnabled(GetDlgItem(box, IDOK)));
        CheckHolds(TextIn(box, IDC_LBL_PASSWORD_HINT), "code page");
        TypeIn(box, IDC_TXT_PASSWORD, text);
        CHECK((IsWindowEnabled(GetDlgItem(box, IDOK)) == FALSE) == text.empty());
        CHECK((GetWindowLongA(field, GWL_STYLE) & ES_PASSWORD) != 0);
        CHECK(SendMessageA(bar, PBM_GETPOS, 0, 0) == (text.empty() ? 500 : 333));
        wizard.Answer(box, text.empty() ? IDCANCEL : IDOK);
    };
    answer("nope", "password");
    answer("pass", "password_again");
    answer("", "");
    wizard.AwaitFinish();
    for (const auto& [name, isThere] :
         {std::pair{"opened", true}, {"too", true}, {"skipped", false}})
        CHECK(FileExists(program.Tree() + "\\" + name + ".txt") == isThere);
    CHECK(wizard.Heading() == "Built, with 1 Problem");
}

TEST_CASE("the summary warns of what is emptied and of what is missing, each time it is shown") {
    const ProgramFolder program;
    const Wizard wizard(program);
    wizard.GoToSummary();
    CHECK_FALSE(wizard.IsShown(IDC_LBL_FOREIGN)); // a folder to be made
    struct Row {
        const char *made, *removed;
        std::vector<const char*> parts; // of the warning; none where there is no warning
    };
    std::vector<LONG> heights;
    for (const Row& row : {
             Row{"tree", "program\\Alpha.zip", {"is a file"}},
             Row{"other", "tree", {}},
             Row{"tree\\mine.txt", "other", {"1 file that no build made"}},
             Row{"tree\\vesklive.ini", "tree\\mine.txt", {}}, // of an earlier build
             Row{"tree\\mine.txt", "program\\pebuilder3110a.zip", {"there is no address"}},
             Row{"tree\\too.txt",
                 "tree\\vesklive.ini",
                 {"2 files that no build made", "there is no address to download it from"}},
         }) {
        CAPTURE(row.removed);
        program.Folder().Write(row.made, "x");
        RemoveFile(program.Folder() / row.removed);
        wizard.GoTo(IDC_CMD_BACK, kPluginsHeading);
        wizard.Next(kSummaryHeading);
        CHECK(wizard.IsShown(IDC_LBL_FOREIGN) == !row.parts.empty());
        const std::string warning = wizard.Text(IDC_LBL_FOREIGN);
        for (const char* part : row.parts)
            CheckHolds(warning, part);
        CHECK(warning.find_first_of("\r\n") != 0);
        CHECK_FALSE(warning.ends_with('\n'));
        heights.push_back(SizeOf(wizard.Control(IDC_LBL_FOREIGN)).cy);
        AWAIT(wizard, IsTidy(wizard.Window()));
    }
    CHECK(heights.back() > heights.front()); // two warnings need more lines
}

TEST_CASE("a folder that no build made is emptied only after what is in it was told") {
    const ProgramFolder program;
    const std::string mine = program.Folder().Write("tree\\mine.txt", "keep");
    const clsInstallFolder folder(program.Tree(), clsFolderGuard({}));
    bool yes = false;
    SUBCASE("answered No") {}
    SUBCASE("answered Yes") {
        yes = true;
    }
    const Wizard wizard(program);
    wizard.GoToSummary();
    const auto refused = [&](const std::string& reason) {
        CheckHolds(wizard.ClickAndAnswer(IDC_CMD_NEXT, "Vesk Builder", IDOK), reason);
        CHECK(wizard.Heading() == kSummaryHeading);
        CHECK(wizard.IsEnabled(IDC_CMD_BACK));
        CHECK(FileExists(mine));
    };
    CHECK(SendMessageA(wizard.Window(), WM_QUERYENDSESSION, 0, 0) != 0);
    if (yes) {
        const clsBuildLock other(folder);
        refused("Another build is running");
    }
    program.Folder().Write("tree\\new.txt", "x"); // not what the user was told
    refused("has changed");
    CheckHolds(wizard.Text(IDC_LBL_FOREIGN), "2 files that no build made");

    wizard.Click(IDC_CMD_NEXT);
    const HWND box = wizard.AwaitDialog("Confirmation");
    CHECK(TextIn(box, 0xFFFF) == "Project folder allready exists. Do you want to continue");
    PostMessageA(wizard.Window(), WM_CLOSE, 0, 0); // refused while the run works
    CHECK(SendMessageA(wizard.Window(), WM_QUERYENDSESSION, 0, 0) == 0);
    for (const int button : {IDC_CMD_HELP, IDC_CMD_BACK, IDC_CMD_NEXT, IDCANCEL})
        CHECK_FALSE(wizard.IsEnabled(button));
    wizard.Answer(box, yes ? IDYES : IDNO);
    wizard.AwaitFinish();
    CHECK(wizard.Heading() == (yes ? "Build Complete" : "Not Built"));
    CHECK(Holds(wizard.Text(IDC_LBL_HEADING_SM2), "answered No") == !yes);
    CHECK(FileExists(mine) == !yes);
    wizard.Finish();
}

TEST_CASE("an impossible folder is refused when its page is left for the next one") {
    const ProgramFolder program;
    const Wizard wizard(program);
    const std::string welcome = wizard.Heading();
    wizard.Next(kBaseHeading);
    wizard.SetText(IDC_TXT_WIN_PATH, program.Folder().Path());
    const std::string installed = std::string(std::getenv("ProgramFiles")) + "\\VeskUiTest";
    CreateFolderPath(installed);
    WriteCompleteFile(installed + "\\mine.txt", "keep");
    std::string told;
    for (const std::wstring& folder :
         {Widen("C:\\"), Widen(""), Widen(program.Tree()) + L"\x012B", // it would be misspelled
          Widen("C:\\" + std::string(1600, 'x')), Widen(program.Folder() / "program"),
          Widen(program.Tree()), Widen(installed)}) {
        wizard.Type(IDC_TXT_PROG_PATH, folder);
        told += wizard.ClickAndAnswer(IDC_CMD_NEXT, "Vesk Builder", IDOK) + "\n";
        CHECK(wizard.Heading() == kBaseHeading);
        AWAIT(wizard, wizard.Focus() == wizard.Control(IDC_TXT_PROG_PATH));
    }
    CheckExpected("windows/refused_folders", ReplaceAll(told, program.Folder().Path(), "{FOLDER}"));
    TestFolder::RemoveTree(Widen(installed));
    wizard.SetText(IDC_TXT_WIN_PATH, " " + wizard.Text(IDC_TXT_WIN_PATH)); // the same source
    wizard.SetText(IDC_TXT_PROG_PATH, program.Tree());
    CheckHolds(wizard.ClickAndAnswer(IDC_CMD_NEXT, "Vesk Builder", IDOK), "Windows source");
    // None of the other buttons minds it.
    wizard.ClickAndAnswer(IDC_CMD_HELP, "Help", IDOK);
    wizard.ClickAndAnswer(IDCANCEL, "Confirm Action", IDNO);
    wizard.GoTo(IDC_CMD_BACK, welcome);
    wizard.Next(kBaseHeading);
    // A letter that the code page lacks finds no source either, not even where "cdi" is one.
    WriteCd(program.Folder(), "cdi\\I386", "Windows XP Home", "win51.sp2", true);
    wizard.SetText(IDC_TXT_PROG_PATH, program.Tree());
    wizard.Type(IDC_TXT_WIN_PATH, Widen(program.Folder() / "cd") + L"\x012B");
    wizard.GoToSummaryFromBase();
    CheckHolds(wizard.Text(IDC_TXT_SUMMARY), "Source path: Invalid");
}

TEST_CASE("without a catalogue nothing is built, and the editor is one click away") {
    const ProgramFolder program;
    const std::string file = program.Path() + kCatalogueFileName;
    const std::string mine = program.Folder().Write("tree\\pebuilder.exe", "keep");
    const auto opensEditor = [&](const std::string& fault, const std::string& state) {
        const Wizard wizard(program);
        CheckHolds(wizard.AnswerBox("Vesk Builder", IDYES), fault);
        const HWND editor = wizard.AwaitDialog("Plugin Setup");
        AWAIT(wizard, TextIn(editor, IDC_LBL_STATE) == state);
        CHECK(IsWindowEnabled(editor)); // nothing is asked a second time
    };
    WriteCompleteFile(file, "[Install]\r\n");
    opensEditor("", "Not all of the file could be read.");
    RemoveFile(file);
    opensEditor("there is no such file", "A new catalogue, not saved yet.");

    const Wizard wizard(program);
    wizard.AnswerBox("Vesk Builder", IDNO);
    wizard.GoToSummary();
    CheckHolds(wizard.ClickAndAnswer(IDC_CMD_NEXT, "Vesk Builder", IDOK), "-setup");
    CHECK(wizard.Heading() == kSummaryHeading);
    CHECK(FileExists(mine));
}

TEST_CASE("a catalogue that was read in part is built from only when the user says so") {
    const ProgramFolder program;
    const std::string file = program.Path() + kCatalogueFileName;
    std::string broken = "Enabled2=1";
    SUBCASE("a plug-in") {}
    SUBCASE("the first base component, without which nothing is built") {
        broken = "Enabled0=1";
    }
    WriteCompleteFile(file, ReplaceAll(ReadWholeFile(file), broken, broken + "maybe"));
    const std::string mine = program.Folder().Write("tree\\pebuilder.exe", "keep");
    const Wizard wizard(program);
    const std::string told = wizard.AnswerBox("Vesk Builder", IDOK);
    wizard.GoToSummary();
    if (broken == "Enabled0=1") {
        CheckHolds(wizard.ClickAndAnswer(IDC_CMD_NEXT, "Vesk Builder", IDOK),
                   "could not be read in full");
        return;
    }
    CheckHolds(wizard.ClickAndAnswer(IDC_CMD_NEXT, "Vesk Builder", IDNO),
               told); // what is missing, again
    CHECK(wizard.Heading() == kSummaryHeading);
    CHECK(ReadWholeFile(mine) == "keep");
    wizard.ClickAndAnswer(IDC_CMD_NEXT, "Vesk Builder", IDYES);
    wizard.AnswerBox("Confirmation", IDYES);
    wizard.AwaitFinish();
    CHECK(ReadWholeFile(mine) == "stand-in");
}

TEST_CASE("a key from before the summary is in view, or one held down, does not start the build") {
    const ProgramFolder program;
    const std::string mine = program.Folder().Write("tree\\mine.txt", "keep");
    const Wizard wizard(program);
    wizard.Next(kBaseHeading);
    wizard.SetText(IDC_TXT_PROG_PATH, program.Tree());
    wizard.Next(kPluginsHeading);
    const HWND next = wizard.Control(IDC_CMD_NEXT);
    const UniqueHandle<::CloseHandle, HANDLE> thread(OpenThread(
        THREAD_SUSPEND_RESUME, FALSE, GetWindowThreadProcessId(wizard.Window(), nullptr)));
    SuspendThread(thread.Get()); // all of the keys wait before the first one works
    for (int i = 0; i < 3; ++i)
        PostMessageA(next, WM_KEYDOWN, VK_RETURN, 1);
    ResumeThread(thread.Get());
    AWAIT(wizard, wizard.Heading() == kSummaryHeading);
    CHECK(wizard.IsShown(IDC_LBL_FOREIGN));
    PostMessageA(next, WM_KEYDOWN, VK_RETURN, 1 | 1 << 30);
    wizard.GoTo(IDC_CMD_BACK, kPluginsHeading);
    CHECK(FileExists(mine));
}
