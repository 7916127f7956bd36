#include "WizardSteps.h"
#include "build/clsBuildLock.h"
#include "build/clsBuildLog.h"

#include <commctrl.h>

#include <doctest/doctest.h>

using namespace vesk;
using namespace vesk::test;

namespace {

/// "secret text" under the password "pass", as an archiver wrote it.
TestMember Encrypted(const std::string& name) {
    TestMember member = TestMember::Stored(name, "secret text");
    member.data = std::string("\x40\x9D\x13\x30\x49\x22\x68\x1C\x7B\x0D\x3E\xA7\x2A\xF1\xFA"
                              "\x58\x2C\x95\xD5\x3F\x6E\xC7\xAE",
                              23);
    member.flags = 9;
    member.time = 0x4379;
    return member;
}

/// Builds to the end, saying Yes to whatever the wizard still asks.
void Build(const WizardDriver& wizard, const ProgramFolder& program) {
    GoToSummary(wizard, program);
    wizard.Click(IDC_CMD_NEXT);
    AwaitFinish(wizard);
}

HWND OpenProblems(const WizardDriver& wizard) {
    wizard.Click(IDC_CMD_PROBLEMS);
    const HWND dialog = wizard.AwaitDialog(""); // its title tells their number
    REQUIRE(GetDlgItem(dialog, IDC_LST_NOT_DONE));
    return dialog;
}

} // namespace

TEST_CASE("a build with problems lists them, to be read, copied and found again on disk") {
    ProgramFolder program;
    CatalogueEntry more = program.catalogue.plugins[1];
    more.enabled = true;
    program.catalogue.plugins.resize(40, more); // their lines push the warning out of sight
    program.Save();
    RemoveFile(program.Path() + "Alpha.zip");
    RemoveFile(program.Path() + "Gamma.zip");
    const WizardDriver wizard(program.Wizard());
    Build(wizard, program);
    CHECK(wizard.Heading() == "Built, with 2 Problems");
    CHECK(wizard.Text(IDC_CMD_PROBLEMS) == "&Problems (2)...");

    const auto lines = wizard.LogLines();
    const auto warning = std::ranges::find_if(lines, IsWarningLine) - lines.begin();
    const HWND log = wizard.Control(IDC_LST_PROGRESS);
    const LRESULT top = SendMessageA(log, LB_GETTOPINDEX, 0, 0);
    CHECK(top <= warning);
    CHECK(warning - top < 5);

    const std::string saved = ReadWholeFile(program.Path() + kProblemsFileName);
    CHECK(Holds(saved, "Alpha.zip"));
    CHECK(Holds(saved, "Gamma.zip"));
    const std::string first = saved.substr(0, saved.find("\r\n"));
    const HWND dialog = OpenProblems(wizard);
    const HWND list = GetDlgItem(dialog, IDC_LST_NOT_DONE);
    CHECK(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0) == 2);
    CHECK(TextIn(dialog, IDC_TXT_NOT_DONE) == first);
    CHECK(wizard.CellText(list, 0, 0) == "Alpha.zip");
    CHECK(Holds(first, wizard.CellText(list, 0, 2)));
    PostMessageA(GetDlgItem(dialog, IDC_CMD_COPY), BM_CLICK, 0, 0);
    CHECK(AwaitClipboard(saved)); // no line is selected: all of them
    PostMessageA(list, WM_KEYDOWN, VK_END, 0);
    CHECK(WaitUntil([&] {
        return Holds(saved, TextIn(dialog, IDC_TXT_NOT_DONE)) &&
               TextIn(dialog, IDC_TXT_NOT_DONE) != first;
    }));
    PostMessageA(GetDlgItem(dialog, IDC_CMD_COPY), BM_CLICK, 0, 0);
    CHECK(AwaitClipboard(saved.substr(first.size() + 2)));

    RECT before{};
    GetWindowRect(list, &before);
    SetWindowPos(dialog, nullptr, 0, 0, 1000, 700, SWP_NOMOVE | SWP_NOZORDER);
    RECT after{};
    GetWindowRect(list, &after);
    CHECK(after.right - after.left > before.right - before.left);
    CHECK(after.bottom - after.top > before.bottom - before.top);
    WizardDriver::Answer(dialog, IDCANCEL);
    wizard.Click(IDC_CMD_NEXT);
    CHECK(wizard.AwaitEnd() == 0);
}

TEST_CASE("a tree without PE Builder is called not usable, and why") {
    ProgramFolder program;
    program.catalogue.baseComponents[0].crc = "1";
    program.Save();
    const WizardDriver wizard(program.Wizard());
    Build(wizard, program);
    CHECK(wizard.Heading() == "Not Usable");
    CHECK(Holds(wizard.Text(IDC_LBL_HEADING_SM2), "PE Builder's archive was not installed"));
    CHECK(wizard.IsShown(IDC_CMD_PROBLEMS));
}

TEST_CASE("a log that cannot be saved is told, and the list of problems is saved all the same") {
    const ProgramFolder program;
    RemoveFile(program.Path() + "Gamma.zip");
    program.Folder().Write(std::string("program\\") + kLogFileName + "\\in the way", "x");
    const WizardDriver wizard(program.Wizard());
    GoToSummary(wizard, program);
    wizard.Click(IDC_CMD_NEXT);
    const std::string told = AnswerBox(wizard, "Vesk Builder", IDOK);
    CHECK(told.starts_with("The log could not be saved: "));
    CHECK(Holds(ReadWholeFile(program.Path() + kProblemsFileName), "Gamma.zip"));
    wizard.Click(IDC_CMD_NEXT);
    CHECK(wizard.AwaitEnd() == 0);
}

TEST_CASE("the password of an archive is asked for, again while it is wrong, and can be skipped") {
    struct Row {
        std::vector<std::string> answers; // an empty one cancels
        bool opened;
    };
    for (const Row& row :
         {Row{{"pass"}, true}, Row{{"nope", "pass"}, true}, Row{{"nope", ""}, false}}) {
        CAPTURE(row.answers.size());
        ProgramFolder program;
        program.AddBase("Locked", "locked.zip", {Encrypted("secret.txt"), Encrypted("other.txt")});
        program.Save();
        const WizardDriver wizard(program.Wizard());
        GoToSummary(wizard, program);
        wizard.Click(IDC_CMD_NEXT);
        bool again = false;
        for (const std::string& answer : row.answers) {
            const HWND box = wizard.AwaitDialog("Please Enter The Password!");
            CHECK(Holds(TextIn(box, IDC_LBL_PASSWORD), "locked.zip"));
            CHECK(Holds(TextIn(box, IDC_LBL_PASSWORD), "not the right password") == again);
            CHECK_FALSE(IsWindowEnabled(GetDlgItem(box, IDOK)));
            const HWND field = GetDlgItem(box, IDC_TXT_PASSWORD);
            CHECK((GetWindowLongA(field, GWL_STYLE) & ES_PASSWORD) != 0);
            SendMessageA(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(answer.c_str()));
            WizardDriver::Answer(box, answer.empty() ? IDCANCEL : IDOK);
            again = true;
        }
        AwaitFinish(wizard);
        CHECK(FileExists(program.Tree() + "\\secret.txt") == row.opened);
        CHECK((wizard.Heading() == "Build Complete") == row.opened);
    }
}

TEST_CASE("a folder that no build made is emptied only after the summary told what is in it") {
    const ProgramFolder program;
    const std::string mine = program.Folder().Write("tree\\mine.txt", "keep");
    const WizardDriver wizard(program.Wizard());
    GoToSummary(wizard, program);
    CHECK(wizard.IsShown(IDC_LBL_FOREIGN));
    CHECK(Holds(wizard.Text(IDC_LBL_FOREIGN), "1 file that no build made"));
    CHECK(Holds(wizard.Text(IDC_TXT_SUMMARY), "Installation path: " + program.Tree()));

    program.Folder().Write("tree\\new.txt", "x"); // not what the user was told
    wizard.Click(IDC_CMD_NEXT);
    CHECK(Holds(AnswerBox(wizard, "Vesk Builder", IDOK), "has changed"));
    CHECK(wizard.Heading() == kSummaryHeading);
    CHECK(Holds(wizard.Text(IDC_LBL_FOREIGN), "2 files that no build made"));
    CHECK(FileExists(mine));

    wizard.Click(IDC_CMD_NEXT);
    AnswerBox(wizard, "Confirmation", IDYES);
    AwaitFinish(wizard);
    CHECK(wizard.Heading() == "Build Complete");
    CHECK_FALSE(FileExists(mine));
}

TEST_CASE("a tree of an earlier build, and a folder to be made, are replaced without a warning") {
    const ProgramFolder program;
    for (const char* file : {"", "tree\\vesklive.ini"}) {
        CAPTURE(file);
        if (*file != '\0')
            program.Folder().Write(file, "x");
        const WizardDriver wizard(program.Wizard());
        GoToSummary(wizard, program);
        CHECK_FALSE(wizard.IsShown(IDC_LBL_FOREIGN));
    }
}

TEST_CASE("an impossible folder is refused when its page is left for the next one") {
    const auto& [program, wizard] = Opened();
    const std::string welcome = wizard.Heading();
    wizard.GoTo(IDC_CMD_NEXT, kBaseHeading);
    for (const std::string& folder :
         {std::string("Q:\\x"), std::string("C:\\bad|name?x"), std::string("C:\\"), std::string(),
          std::string("C:relative"), "C:\\" + std::string(1600, 'x'), program.Folder().Path()}) {
        CAPTURE(folder);
        wizard.SetText(IDC_TXT_PROG_PATH, folder);
        wizard.Click(IDC_CMD_NEXT);
        CHECK_FALSE(AnswerBox(wizard, "Vesk Builder", IDOK).empty());
        CHECK(wizard.Heading() == kBaseHeading);
    }
    // None of the other buttons minds it.
    wizard.SetText(IDC_TXT_PROG_PATH, "C:\\" + std::string(1600, 'x'));
    wizard.Click(IDC_CMD_HELP);
    AnswerBox(wizard, "Help", IDOK);
    wizard.Click(IDCANCEL);
    AnswerBox(wizard, "Confirm Action", IDNO);
    wizard.GoTo(IDC_CMD_BACK, welcome);
}

TEST_CASE("two builds do not work in one folder") {
    const ProgramFolder program;
    const clsInstallFolder folder(program.Tree(), clsFolderGuard({}));
    const WizardDriver wizard(program.Wizard());
    GoToSummary(wizard, program);
    {
        const clsBuildLock other(folder);
        wizard.Click(IDC_CMD_NEXT);
        CHECK(Holds(AnswerBox(wizard, "Vesk Builder", IDOK), "Another build is running"));
        CHECK(wizard.Heading() == kSummaryHeading);
        CHECK(wizard.IsEnabled(IDC_CMD_BACK));
    }
    wizard.Click(IDC_CMD_NEXT);
    AwaitFinish(wizard);
    CHECK(wizard.Heading() == "Build Complete");
}

TEST_CASE("without a catalogue nothing is built, and the editor is one click away") {
    const ProgramFolder program;
    RemoveFile(program.Path() + kCatalogueFileName);
    const std::string mine = program.Folder().Write("tree\\pebuilder.exe", "keep");
    const WizardDriver wizard(program.Wizard());
    SUBCASE("the editor") {
        CHECK(Holds(AnswerBox(wizard, "Vesk Builder", IDYES), "there is no such file"));
        const HWND editor = wizard.AwaitDialog("Plugin Setup");
        CHECK(WaitUntil(
            [&] { return TextIn(editor, IDC_LBL_STATE) == "A new catalogue, not saved yet."; }));
        CHECK(IsWindowEnabled(editor)); // nothing is asked a second time
    }
    SUBCASE("the wizard") {
        AnswerBox(wizard, "Vesk Builder", IDNO);
        GoToSummary(wizard, program);
        wizard.Click(IDC_CMD_NEXT);
        CHECK(Holds(AnswerBox(wizard, "Vesk Builder", IDOK), "-setup"));
        CHECK(wizard.Heading() == kSummaryHeading);
        CHECK(FileExists(mine));
    }
}

TEST_CASE("a catalogue that was read in part is built from only when the user says so") {
    const ProgramFolder program;
    std::string text = ReadWholeFile(program.Path() + kCatalogueFileName);
    const std::size_t at = text.find("Enabled2"); // of the last plug-in
    REQUIRE(at != std::string::npos);
    text.insert(text.find('=', at) + 1, "maybe");
    WriteCompleteFile(program.Path() + kCatalogueFileName, text);
    const std::string mine = program.Folder().Write("tree\\pebuilder.exe", "keep");
    const WizardDriver wizard(program.Wizard());
    const std::string told = AnswerBox(wizard, "Vesk Builder", IDOK);
    GoToSummary(wizard, program);
    wizard.Click(IDC_CMD_NEXT);
    CHECK(Holds(AnswerBox(wizard, "Vesk Builder", IDNO), told)); // what is missing, again
    CHECK(wizard.Heading() == kSummaryHeading);
    CHECK(ReadWholeFile(mine) == "keep");
    wizard.Click(IDC_CMD_NEXT);
    AnswerBox(wizard, "Vesk Builder", IDYES);
    AnswerBox(wizard, "Confirmation", IDYES);
    AwaitFinish(wizard);
    CHECK(ReadWholeFile(mine) == "stand-in");
}

TEST_CASE(
    "a folder's name that the program would misspell is refused, and nothing is built there") {
    const auto& [program, wizard] = Opened(kBaseHeading);
    wizard.SetText(IDC_TXT_PROG_PATH, program.Tree());
    const HWND field = wizard.Control(IDC_TXT_PROG_PATH);
    SendMessageW(field, EM_SETSEL, 10000, 10000);
    SendMessageW(field, WM_CHAR, L'\x012B', 1);
    wizard.Click(IDC_CMD_NEXT);
    CHECK(Holds(AnswerBox(wizard, "Vesk Builder", IDOK), "code page"));
    CHECK(wizard.Heading() == kBaseHeading);
    // The same letter in the source folder finds no source.
    wizard.SetText(IDC_TXT_PROG_PATH, program.Tree());
    program.Folder().Write("cdi\\I386\\LAYOUT.INF", "x");
    program.Folder().Write("cdi\\I386\\SETUPLDR.BIN", "x");
    program.Folder().Write("cdi\\I386\\NTDLL.DLL", "x");
    SetWindowTextA(wizard.Control(IDC_TXT_WIN_PATH), "");
    for (const char c : program.Folder() / "cd")
        SendMessageA(wizard.Control(IDC_TXT_WIN_PATH), WM_CHAR, static_cast<WPARAM>(c), 1);
    SendMessageW(wizard.Control(IDC_TXT_WIN_PATH), WM_CHAR, L'\x012B', 1);
    GoToSummaryFromBase(wizard);
    CHECK(Holds(wizard.Text(IDC_TXT_SUMMARY), "Source path: Invalid"));
}

TEST_CASE("the summary says beforehand when nothing usable can come of the build") {
    ProgramFolder program;
    SUBCASE("there") {
        const WizardDriver wizard(program.Wizard());
        GoToSummary(wizard, program);
        CHECK_FALSE(wizard.IsShown(IDC_LBL_FOREIGN));
    }
    SUBCASE("missing, without an address, and a foreign folder besides") {
        RemoveFile(program.Path() + "pebuilder3110a.zip");
        program.Save();
        program.Folder().Write("tree\\mine.txt", "keep");
        const WizardDriver wizard(program.Wizard());
        GoToSummary(wizard, program);
        CHECK(Holds(wizard.Text(IDC_LBL_FOREIGN), "1 file that no build made"));
        CHECK(Holds(wizard.Text(IDC_LBL_FOREIGN), "there is no address to download it from"));
    }
}
