#include "WizardSteps.h"
#include "build/clsBuildLog.h"
#include "source/WindowsCd.h"
#include "ui/kit/KitWindow.h"

using namespace vesk;
using namespace vesk::test;

namespace {

/// True when this area of the screen shows a pixel of this colour.
bool ShowsColour(const RECT& area, COLORREF colour) {
    return HasPixel(nullptr, area, [&](COLORREF pixel) { return pixel == colour; });
}

/// True when a control does not show one colour all over, as it does without its picture.
bool ShowsPicture(HWND control) {
    COLORREF first = CLR_INVALID;
    return HasPixel(nullptr, AreaOf(control), [&](COLORREF pixel) {
        first = first == CLR_INVALID ? pixel : first;
        return pixel != first;
    });
}

/// Whether a window is white from its top down to a line, its heading too, and grey at its end.
bool IsWhiteDownTo(const WizardDriver& wizard, int line) {
    RECT inside{};
    GetClientRect(wizard.Window(), &inside);
    MapWindowPoints(wizard.Window(), nullptr, reinterpret_cast<POINT*>(&inside), 2);
    const RECT heading = AreaOf(wizard.Control(IDC_LBL_HEADING));
    const LONG right = inside.right - 1;
    const COLORREF white = GetSysColor(COLOR_WINDOW);
    return !HasPixel(nullptr, {right, inside.top, inside.right, AreaOf(wizard.Control(line)).top},
                     [&](COLORREF pixel) { return pixel != white; }) &&
           ShowsColour({right, inside.bottom - 1, inside.right, inside.bottom},
                       GetSysColor(COLOR_BTNFACE)) &&
           ShowsColour({heading.left, heading.top, heading.left + 1, heading.top + 1}, white);
}

} // namespace

TEST_CASE("a whole build, page by page, each compared with what it is to show") {
    const ProgramFolder program;
    WriteCd(program.Folder(), "cd\\I386", "Windows XP Home", "win51.sp2", true);
    const Wizard wizard(program);
    wizard.CheckShows("welcome");
    AWAIT(wizard, ShowsPicture(wizard.Control(IDC_IMG_LOGO)));
    AWAIT(wizard, IsWhiteDownTo(wizard, IDC_LINE_BOTTOM));
    const std::string welcome = wizard.Heading();
    wizard.Next(kBaseHeading);
    CHECK(wizard.Text(IDC_TXT_PROG_PATH) == "C:\\VeskUiTest");
    AWAIT(wizard, ShowsPicture(wizard.Control(IDC_IMG_LOGO_SMALL)));
    AWAIT(wizard, IsWhiteDownTo(wizard, IDC_LINE_TOP));
    wizard.GoTo(IDC_CMD_BACK, welcome);
    wizard.Next(kBaseHeading);
    wizard.PressSpaceOn(IDC_LST_BASE, 0); // locked: it springs back
    const HWND base = wizard.Control(IDC_LST_BASE);
    for (const char* state : {"Good, built though unticked", "Good"}) {
        wizard.PressSpaceOn(IDC_LST_BASE, 1);
        AWAIT(wizard, CellText(base, 1, 2) == state);
    }
    wizard.SetText(IDC_TXT_PROG_PATH, program.Tree() + "\\");
    wizard.SetText(IDC_TXT_WIN_PATH, program.Folder() / "cd");
    wizard.Next(kPluginsHeading);
    wizard.GoTo(IDC_CMD_BACK, kBaseHeading);
    wizard.CheckShows("base_with_source");
    wizard.Next(kPluginsHeading);
    for (const int line : {2, 1, 0}) // which leaves the locked one unselected
        wizard.PressSpaceOn(IDC_LST_PLUGINS, line);
    wizard.CheckShows("plugins");
    const HWND list = wizard.Control(IDC_LST_PLUGINS);
    CHECK(SendMessageA(list, LVM_GETCOLUMNWIDTH, 0, 0) > SizeOf(list).cx / 4);
    RECT texts = AreaOf(list);
    InflateRect(&texts, -40, -40); // neither header nor ticks
    AWAIT(wizard, ShowsColour(texts, GetSysColor(COLOR_GRAYTEXT)));
    wizard.Next(kSummaryHeading);
    wizard.GoTo(IDC_CMD_BACK, kPluginsHeading);
    wizard.Next(kSummaryHeading);
    wizard.CheckShows("summary");

    wizard.Click(IDC_CMD_NEXT);
    wizard.AwaitFinish();
    wizard.CheckShows("build");
    DWORD_PTR none = 0; // the click does nothing here: no question keeps it
    CHECK(SendMessageTimeoutA(wizard.Control(IDCANCEL), BM_CLICK, 0, 0, SMTO_NORMAL, 15000, &none));
    CHECK_FALSE(wizard.HasEnded());
    const auto lines = wizard.LogLines();
    REQUIRE(lines.size() > 5);
    const auto last = static_cast<LRESULT>(lines.size() - 1);
    CHECK(SendMessageA(wizard.Control(IDC_LST_PROGRESS), LB_GETCARETINDEX, 0, 0) == last);
    CheckStarts(lines.front(), "Vesk Builder v");
    CHECK(lines.back() == "click 'Finish' to exit");
    CHECK(ReadWholeFile(program.Tree() + "\\extra.txt") == "extra");
    CHECK(FileExists(program.Tree() + "\\Plugin\\100_tools\\Beta\\Beta.inf"));
    CHECK_FALSE(FolderExists(program.Tree() + "\\Plugin\\100_tools\\Alpha"));

    // Lines are longer than this.
    CHECK(SendMessageA(wizard.Control(IDC_LST_PROGRESS), LB_GETHORIZONTALEXTENT, 0, 0) > 300);
    // The log's own menu and keys.
    const std::string logFile = program.Path() + kLogFileName;
    CHECK(ReadWholeFile(logFile) == Joined(lines));
    wizard.PickFromLogMenu(1);
    wizard.AwaitClipboard("");
    wizard.PickFromLogMenu(2);
    wizard.PickFromLogMenu(1);
    wizard.AwaitClipboard(Joined(lines));
    SendMessageA(wizard.Control(IDC_LST_PROGRESS), LB_SETSEL, FALSE, -1);
    wizard.PickFromLogMenu(1);
    wizard.AwaitClipboard("");
    wizard.FocusOn(IDC_LST_PROGRESS);
    wizard.PressWithControl('A');
    AWAIT(wizard, SendMessageA(wizard.Focus(), LB_GETSELCOUNT, 0, 0) > 5);
    wizard.PressWithControl('C');
    wizard.AwaitClipboard(Joined(lines));
    RemoveFile(logFile);
    wizard.PickFromLogMenu(3);
    AWAIT(wizard, ReadWholeFile(logFile) == Joined(lines));
    wizard.Finish();
}

TEST_CASE("leaving is asked for on each page, by Cancel, the title bar and Escape; F1 helps") {
    const ProgramFolder program;
    const Wizard wizard(program);
    const std::string welcome = wizard.Heading();
    const auto declineExit = [&] {
        const std::string heading = wizard.Heading();
        CHECK(wizard.AnswerBox("Confirm Action", IDNO)
                  .starts_with("Are you sure you want to exit the setup ?"));
        CHECK(wizard.Heading() == heading);
    };
    for (const char* next : {kBaseHeading, kPluginsHeading, kSummaryHeading, ""}) {
        wizard.Click(IDCANCEL);
        declineExit();
        PostMessageA(wizard.Window(), WM_CLOSE, 0, 0);
        declineExit();
        if (*next != '\0')
            wizard.Next(next);
    }
    // Texts that are only read let these keys through.
    wizard.FocusOn(IDC_TXT_SUMMARY);
    wizard.Press(VK_ESCAPE);
    declineExit();
    for (const char* back : {kPluginsHeading, kBaseHeading, welcome.c_str()})
        wizard.GoTo(IDC_CMD_BACK, back);
    wizard.FocusOn(IDC_TXT_WELCOME);
    wizard.Press(VK_RETURN);
    AWAIT(wizard, wizard.Heading() == kBaseHeading);
    wizard.PressOnKeyboard(VK_F1);
    CheckStarts(wizard.AnswerBox("Help", IDOK), "Unable to display Help Contents.");
    wizard.ClickAndAnswer(IDC_CMD_HELP, "Help", IDOK);
    wizard.ClickAndAnswer(IDCANCEL, "Confirm Action", IDYES);
    CHECK(wizard.AwaitEnd() == 0);
}

TEST_CASE("a folder is browsed for as Windows XP does it, beginning with the one that is named") {
    const ProgramFolder program;
    const ChangedKey noDialogOfVista(
        HKEY_CLASSES_ROOT, R"(CLSID\{DC1C5A9C-E88A-4DDE-A5A1-60F82A20AEF7}\InProcServer32)",
        "none");
    const Wizard wizard(program);
    wizard.Next(kBaseHeading);
    wizard.SetText(IDC_TXT_WIN_PATH, R"(C:\windows\system32)");
    wizard.SetText(IDC_TXT_PROG_PATH, R"(C:\windows\system32\none\either)");
    for (const int button : {IDC_CMD_WIN_PATH, IDC_CMD_PROG_PATH}) {
        wizard.Click(button);
        wizard.Answer(wizard.AwaitDialog("Browse for Folder"), IDOK);
    }
    AWAIT(wizard, wizard.Text(IDC_TXT_WIN_PATH) == R"(C:\windows\system32\)");
    AWAIT(wizard, wizard.Text(IDC_TXT_PROG_PATH) == R"(C:\windows\system32)");
}

TEST_CASE("a Windows source is typed, browsed for and searched for, and shown as usable or not") {
    const ProgramFolder program;
    WriteCd(program.Folder(), "cd\\I386", "Windows XP Home", "win51.sp2", true);
    const Wizard wizard(program);
    wizard.Next(kBaseHeading);
    const HWND field = wizard.Control(IDC_TXT_WIN_PATH);
    wizard.SetText(IDC_TXT_WIN_PATH, program.Path());
    wizard.FocusOn(IDC_TXT_WIN_PATH);
    wizard.Press(VK_TAB);
    AWAIT(wizard, ShowsColour(AreaOf(field), RGB(140, 0, 0)));
    CHECK_FALSE(ShowsColour(AreaOf(field), RGB(0, 130, 0)));

    const auto browse = [&](int button) {
        wizard.Click(IDC_CMD_WIN_PATH);
        const HWND dialog = wizard.AwaitDialog("Choose the folder of the Windows CD");
        WizardDriver::TypeInto(dialog, program.Folder() / "cd");
        wizard.Answer(dialog, button);
    };
    browse(IDCANCEL);
    CHECK(wizard.Text(IDC_TXT_WIN_PATH) == program.Path());
    browse(IDOK);
    AWAIT(wizard, wizard.Text(IDC_LBL_WIN_PRODUCT) == "Windows XP Home SP2");
    CHECK(wizard.Text(IDC_TXT_WIN_PATH) == program.Folder() / "cd\\");
    AWAIT(wizard, ShowsColour(AreaOf(field), RGB(0, 130, 0)));
    wizard.SetText(IDC_TXT_PROG_PATH, program.Folder() / "cd");
    CHECK_FALSE(ShowsColour(AreaOf(wizard.Control(IDC_TXT_PROG_PATH)), RGB(0, 130, 0)));
    wizard.SetText(IDC_TXT_WIN_PATH, "");
    wizard.FocusOn(IDC_TXT_WIN_PATH);
    wizard.Press(VK_TAB);
    AWAIT(wizard, wizard.Text(IDC_LBL_WIN_PRODUCT).empty());

    const auto search = [&](int answer) {
        CHECK(wizard.ClickAndAnswer(IDC_CMD_SCAN, "File Search", answer) ==
              "Search for Windows installation files ?\r\n(can take some time)");
    };
    search(IDNO);
    for (const bool byMouse : {true, false}) {
        wizard.SetText(IDC_TXT_WIN_PATH, "");
        search(IDYES);
        const HWND dialog = wizard.AwaitDialog("Searching for Windows installation files");
        const HWND list = GetDlgItem(dialog, IDC_LST_FOUND);
        const HWND select = GetDlgItem(dialog, IDC_CMD_SELECT);
        const auto stop = [&] {
            AWAIT(wizard, SendMessageA(list, LVM_GETITEMCOUNT, 0, 0) > 0);
            ClickIn(dialog, IDC_CMD_STOP);
            AWAIT(wizard, TextIn(dialog, IDC_CMD_STOP) == "&Start" && IsWindowEnabled(select));
            AWAIT(wizard, TextIn(dialog, IDC_LABEL1).empty() && wizard.Focus() == list);
        };
        AWAIT(wizard, !TextIn(dialog, IDC_LABEL1).empty()); // the folder that it is in
        // A key in the window behind: it must not ask whether to leave.
        PostMessageA(wizard.Control(IDC_CMD_NEXT), WM_KEYDOWN, VK_ESCAPE, 1);
        stop();
        ClickIn(dialog, IDC_CMD_STOP);
        AWAIT(wizard, TextIn(dialog, IDC_CMD_STOP) == "&Stop" && !IsWindowEnabled(select));
        stop();
        AWAIT(wizard, IsTidy(dialog));
        CHECK(SendMessageA(list, LVM_GETSELECTEDCOUNT, 0, 0) == 1);
        CHECK(LOWORD(SendMessageA(dialog, DM_GETDEFID, 0, 0)) == IDC_CMD_SELECT);
        const std::string found = CellText(list, 0, 0);
        CHECK(CellText(list, 0, 1) == "Windows XP Home sp2");
        byMouse ? DoubleClickLine(list, 0) : ClickIn(dialog, IDC_CMD_SELECT);
        AWAIT(wizard, wizard.Text(IDC_TXT_WIN_PATH) == found);
        CHECK(wizard.Text(IDC_LBL_WIN_PRODUCT) == "Windows XP Home sp2");
    }

    search(IDYES);
    REQUIRE(wizard.AwaitDialog("Searching for Windows installation files"));
    PostMessageA(wizard.Window(), WM_CLOSE, 0, 0);
    wizard.AnswerBox("Confirm Action", IDYES);
    CHECK(WaitUntil([&] { return wizard.HasEnded(); }, 30000)); // long before all is searched
}

TEST_CASE("the window answers again and again while an archive is extracted") {
    ProgramFolder program;
    std::vector<TestMember> members;
    for (int i = 0; i < 600; ++i)
        members.push_back(TestMember::Stored("files\\" + std::to_string(i) + ".bin",
                                             std::string(20000, static_cast<char>(i))));
    program.AddBase("Big", "big.zip", members);
    program.Save();
    const Wizard wizard(program);
    wizard.GoToSummary();
    wizard.Click(IDC_CMD_NEXT);
    int answers = 0;
    bool isLogRead = false;
    wizard.Await("the build's end", [&] {
        isLogRead |= wizard.Focus() == wizard.Control(IDC_LST_PROGRESS);
        answers += wizard.Text(IDC_LBL_FILE) == "Processing: big.zip" ? 1 : 0;
        return wizard.Text(IDC_CMD_NEXT) == "&Finish" && wizard.IsEnabled(IDC_CMD_NEXT);
    });
    CHECK(isLogRead);   // by the keyboard
    CHECK(answers > 2); // how quickly it does is measured elsewhere
}
