#include "EditorDriver.h"
#include "WizardSteps.h"

#include <commctrl.h>

#include <doctest/doctest.h>

#include <array>

using namespace vesk;
using namespace vesk::test;

namespace {

RECT AreaOf(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return area;
}

LONG WidthOf(HWND window) {
    const RECT area = AreaOf(window);
    return area.right - area.left;
}

LONG HeightOf(HWND window) {
    const RECT area = AreaOf(window);
    return area.bottom - area.top;
}

bool IsInside(HWND control, const RECT& area) {
    const RECT own = AreaOf(control);
    return own.left >= area.left && own.top >= area.top && own.right <= area.right &&
           own.bottom <= area.bottom;
}

HWND FocusOf(const WizardDriver& wizard) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(wizard.Window(), nullptr), &info);
    return info.hwndFocus;
}

/// Sets the size of the system's message font for the programs that start next.
class MessageFont {
public:
    explicit MessageFont(int points) {
        before_.cbSize = sizeof before_;
        SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof before_, &before_, 0);
        NONCLIENTMETRICSA larger = before_;
        larger.lfMessageFont.lfHeight = -MulDiv(points, 96, 72);
        Set(larger);
    }
    MessageFont(const MessageFont&) = delete;
    MessageFont& operator=(const MessageFont&) = delete;
    ~MessageFont() { Set(before_); }

private:
    static void Set(NONCLIENTMETRICSA& metrics) {
        SystemParametersInfoA(SPI_SETNONCLIENTMETRICS, sizeof metrics, &metrics,
                              SPIF_UPDATEINIFILE);
    }
    NONCLIENTMETRICSA before_{};
};

/// Hands mail addresses to a command that leaves a file behind, for as long as it lives.
class MailHandler {
public:
    explicit MailHandler(const std::string& traceFile) {
        RegCreateKeyA(HKEY_LOCAL_MACHINE, kKey, &key_);
        std::array<char, 1024> text{};
        DWORD size = text.size() - 1;
        RegQueryValueExA(key_, nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()),
                         &size);
        before_ = text.data();
        Set("C:\\windows\\system32\\cmd.exe /c echo %1 > " + traceFile);
    }
    MailHandler(const MailHandler&) = delete;
    MailHandler& operator=(const MailHandler&) = delete;
    ~MailHandler() {
        Set(before_);
        RegCloseKey(key_);
    }

private:
    void Set(const std::string& command) {
        RegSetValueExA(key_, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(command.c_str()),
                       static_cast<DWORD>(command.size() + 1));
    }
    static constexpr const char* kKey = "Software\\Classes\\mailto\\shell\\open\\command";
    HKEY key_ = nullptr;
    std::string before_;
};

/// Adds where a window that is shown stands within its parent.
BOOL CALLBACK AddArea(HWND window, LPARAM list) {
    RECT area = AreaOf(window);
    MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&area), 2);
    if (IsWindowVisible(window))
        reinterpret_cast<std::vector<RECT>*>(list)->push_back(area);
    return TRUE;
}

std::vector<RECT> LayoutOf(HWND dialog) {
    std::vector<RECT> areas;
    EnumChildWindows(dialog, AddArea, reinterpret_cast<LPARAM>(&areas));
    return areas;
}

/// Takes a dialog to a monitor with one and a half times the resolution, looks, and takes it back.
template <class Look>
void OnFinerMonitor(const WizardDriver& program, HWND dialog, const Look& look) {
    const RECT place = AreaOf(dialog);
    const std::vector<RECT> before = LayoutOf(dialog);
    const auto scaled = [](LONG pixels) { return pixels * 3 / 2; };
    program.ChangeDpi(
        dialog, 144,
        {20, 20, 20 + scaled(place.right - place.left), 20 + scaled(place.bottom - place.top)});
    const std::vector<RECT> after = LayoutOf(dialog);
    REQUIRE(after.size() == before.size());
    look();
    program.ChangeDpi(dialog, 96, place);
    const std::vector<RECT> back = LayoutOf(dialog);
    for (std::size_t i = 0; i < before.size(); ++i) {
        CAPTURE(i);
        CHECK(EqualRect(&before[i], &back[i]));
    }
}

/// Presses a key as the keyboard does, together with Ctrl if wanted.
void PressKey(const WizardDriver& wizard, BYTE key, bool withControl = false) {
    SetForegroundWindow(wizard.Window());
    if (withControl)
        keybd_event(VK_CONTROL, 0, 0, 0);
    keybd_event(key, 0, 0, 0);
    keybd_event(key, 0, KEYEVENTF_KEYUP, 0);
    if (withControl)
        keybd_event(VK_CONTROL, 0, KEYEVENTF_KEYUP, 0);
}

/// True when the control shows a pixel of this colour.
bool Shows(HWND control, COLORREF colour) {
    const RECT area = AreaOf(control);
    const HDC screen = GetDC(nullptr);
    bool found = false;
    for (LONG y = area.top; y < area.bottom && !found; ++y) {
        for (LONG x = area.left; x < area.right && !found; ++x)
            found = GetPixel(screen, x, y) == colour;
    }
    ReleaseDC(nullptr, screen);
    return found;
}

} // namespace

TEST_CASE("lists grow with the window, the buttons stay in its corner") {
    const auto& [program, wizard] = Opened();
    const LONG width = WidthOf(wizard.Window());
    const LONG height = HeightOf(wizard.Window());
    // Before the pages with lists are there.
    SetWindowPos(wizard.Window(), nullptr, 0, 0, width + 200, height + 100, SWP_NOZORDER);
    wizard.GoTo(IDC_CMD_NEXT, kBaseHeading);
    wizard.GoTo(IDC_CMD_NEXT, kPluginsHeading);
    const HWND list = wizard.Control(IDC_LST_PLUGINS);
    const LONG listWidth = WidthOf(list);
    const LONG listHeight = HeightOf(list);
    CHECK(IsInside(wizard.Control(IDCANCEL), AreaOf(wizard.Window())));
    CHECK(AreaOf(wizard.Control(IDCANCEL)).right > AreaOf(wizard.Window()).right - 40);
    SetWindowPos(wizard.Window(), nullptr, 0, 0, 100, 100, SWP_NOZORDER);
    CHECK(WidthOf(wizard.Window()) == width); // never smaller than its controls need
    CHECK(WidthOf(list) == listWidth - 200);
    CHECK(HeightOf(list) == listHeight - 100);
}

TEST_CASE("at the largest text sizes every window still fits on the screen") {
    const MessageFont font(36);
    const auto& [program, wizard] = Opened();
    RECT work{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    CHECK(IsInside(wizard.Window(), work));
    for (const int id : {IDC_CMD_HELP, IDC_CMD_NEXT, IDCANCEL, IDC_TXT_WELCOME})
        CHECK(IsInside(wizard.Control(id), AreaOf(wizard.Window())));
    wizard.GoTo(IDC_CMD_NEXT, kBaseHeading);
    CHECK(IsInside(wizard.Control(IDC_CMD_SCAN), AreaOf(wizard.Window())));
    CHECK(AreaOf(wizard.Control(IDC_CMD_SCAN)).bottom <
          AreaOf(wizard.Control(IDC_LINE_BOTTOM)).top);
}

TEST_CASE("on a monitor of another resolution everything is scaled, and back to what it was") {
    const auto& [program, wizard] = Opened();
    const HWND cancel = wizard.Control(IDCANCEL);
    const LONG width = WidthOf(cancel);
    const std::string welcome = wizard.Heading();
    const auto listSize = [&] {
        const HWND list = wizard.Control(IDC_LST_BASE);
        const LRESULT lines = SendMessageA(list, LVM_GETITEMSPACING, TRUE, 0);
        return SIZE{WidthOf(list), HIWORD(lines)};
    };
    SIZE made{};
    OnFinerMonitor(wizard, wizard.Window(), [&] {
        CHECK(WidthOf(cancel) == doctest::Approx(1.5 * width).epsilon(0.02));
        wizard.GoTo(IDC_CMD_NEXT, kBaseHeading); // the page is made there
        made = listSize();
        wizard.GoTo(IDC_CMD_BACK, welcome);
    });
    wizard.GoTo(IDC_CMD_NEXT, kBaseHeading);
    const SIZE back = listSize();
    CHECK(made.cx == doctest::Approx(1.5 * back.cx).epsilon(0.03));
    CHECK(made.cy > back.cy * 5 / 4);
    OnFinerMonitor(wizard, wizard.Window(), [&] { CHECK(listSize().cx == made.cx); });
    const Editor editor(program);
    OnFinerMonitor(editor, editor.Window(), [&] {
        const HWND combo = editor.Control(IDC_CMB_INSTALL_PATH);
        CHECK(HeightOf(combo) == HeightOf(editor.Control(IDC_TXT_FOLDER)));
    });
}

TEST_CASE("the keyboard gets out of a text that is only read") {
    const auto& [program, wizard] = Opened();
    const auto press = [&](WPARAM key) { PostMessageA(FocusOf(wizard), WM_KEYDOWN, key, 1); };
    const auto enter = [&](int text) {
        PostMessageA(wizard.Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(wizard.Control(text)),
                     TRUE);
        REQUIRE(WaitUntil([&] { return FocusOf(wizard) == wizard.Control(text); }, 5000));
    };
    enter(IDC_TXT_WELCOME);
    press(VK_TAB);
    CHECK(WaitUntil([&] { return FocusOf(wizard) == wizard.Control(IDC_CMD_HELP); }, 5000));
    enter(IDC_TXT_WELCOME);
    press(VK_ESCAPE);
    AnswerBox(wizard, "Confirm Action", IDNO);
    enter(IDC_TXT_WELCOME);
    press(VK_RETURN);
    CHECK(WaitUntil([&] { return wizard.Heading() == kBaseHeading; }, 5000));
    wizard.SetText(IDC_TXT_PROG_PATH, program.Tree());
    wizard.GoTo(IDC_CMD_NEXT, kPluginsHeading);
    wizard.GoTo(IDC_CMD_NEXT, kSummaryHeading);
    enter(IDC_TXT_SUMMARY);
    press(VK_ESCAPE);
    AnswerBox(wizard, "Confirm Action", IDNO);
    CHECK(wizard.Heading() == kSummaryHeading);
}

TEST_CASE("a link opens by a click on it, and by none beside the text") {
    const ProgramFolder program;
    const std::string trace = program.Folder() / "opened.txt";
    const MailHandler handler(trace);
    const WizardDriver wizard(program.Wizard());
    const HWND box = wizard.Control(IDC_TXT_WELCOME);
    const auto click = [&](LPARAM at) {
        PostMessageA(box, WM_LBUTTONDOWN, MK_LBUTTON, at);
        PostMessageA(box, WM_LBUTTONUP, 0, at);
    };
    const auto begin = static_cast<WPARAM>(wizard.Text(IDC_TXT_WELCOME).rfind('@'));
    const LRESULT link = SendMessageA(box, EM_POSFROMCHAR, begin, 0);
    RECT inside{};
    GetClientRect(box, &inside);
    click(MAKELPARAM(20, inside.bottom - 3));              // below the last line
    click(MAKELPARAM(inside.right - 3, HIWORD(link) + 3)); // behind it
    CHECK_FALSE(WaitUntil([&] { return FileExists(trace); }, 700));
    click(MAKELPARAM(LOWORD(link) + 2, HIWORD(link) + 3));
    CHECK(WaitUntil([&] { return Holds(ReadWholeFile(trace), "mailto:"); }, 10000));
}

TEST_CASE("more plug-ins than can be ticked: said once, and the others keep what is built") {
    ProgramFolder program;
    program.catalogue.plugins.resize(300, program.catalogue.plugins.front());
    program.catalogue.plugins[299].enabled = false;
    program.Save();
    const WizardDriver wizard(program.Wizard());
    wizard.GoTo(IDC_CMD_NEXT, kBaseHeading);
    wizard.GoTo(IDC_CMD_NEXT, kPluginsHeading);
    const HWND list = wizard.Control(IDC_LST_PLUGINS);
    const auto toggle = [&](WPARAM end) {
        PostMessageA(list, WM_KEYDOWN, end, 0);
        PostMessageA(list, WM_KEYDOWN, VK_SPACE, 0);
        PostMessageA(list, WM_KEYUP, VK_SPACE, 0);
    };
    toggle(VK_END);
    const std::string told = AnswerBox(wizard, "Vesk Builder", IDOK);
    CHECK(Holds(told, "300"));
    CHECK(Holds(told, "256"));
    CHECK(WaitUntil([&] { return !wizard.IsTicked(IDC_LST_PLUGINS, 299); }, 5000));
    toggle(VK_HOME);
    CHECK(WaitUntil([&] { return !wizard.IsTicked(IDC_LST_PLUGINS, 0); }, 5000));
    SendMessageA(list, WM_NULL, 0, 0);
    CHECK(IsWindowEnabled(wizard.Window())); // no second box stands in the way
}

TEST_CASE("a long name pushes no column out of sight, and is shown whole by itself") {
    ProgramFolder program;
    std::string name = "A name";
    while (name.size() < 200)
        name += " that goes on";
    program.catalogue.plugins[0].name = name;
    program.Save();
    const WizardDriver wizard(program.Wizard());
    wizard.GoTo(IDC_CMD_NEXT, kBaseHeading);
    wizard.GoTo(IDC_CMD_NEXT, kPluginsHeading);
    const HWND list = wizard.Control(IDC_LST_PLUGINS);
    RECT inside{};
    GetClientRect(list, &inside);
    LONG together = 0;
    for (WPARAM column = 0; column < 4; ++column)
        together += static_cast<LONG>(SendMessageA(list, LVM_GETCOLUMNWIDTH, column, 0));
    CHECK(together <= inside.right);

    wizard.Click(IDC_CMD_PLUGIN_DETAILS);
    const HWND dialog = wizard.AwaitDialog("Component");
    const HWND field = GetDlgItem(dialog, IDC_LBL_ITEM_NAME);
    CHECK(TextIn(dialog, IDC_LBL_ITEM_NAME) == name);
    const LRESULT lines = SendMessageA(field, EM_GETLINECOUNT, 0, 0);
    CHECK(lines > 1);
    const LRESULT second = SendMessageA(field, EM_LINEINDEX, 1, 0);
    const LONG lineHeight =
        HIWORD(SendMessageA(field, EM_POSFROMCHAR, static_cast<WPARAM>(second), 0)) -
        HIWORD(SendMessageA(field, EM_POSFROMCHAR, 0, 0));
    CHECK(HeightOf(field) >= lines * lineHeight);
    CHECK(AreaOf(GetDlgItem(dialog, IDC_TXT_ITEM_ARCHIVE)).top >= AreaOf(field).bottom);
    CHECK(IsInside(GetDlgItem(dialog, IDCANCEL), AreaOf(dialog)));
}

TEST_CASE("F1, a double click and Ctrl+C do what they are known for") {
    const auto& [program, wizard] = Opened();
    PressKey(wizard, VK_F1);
    AnswerBox(wizard, "Help", IDOK);
    wizard.GoTo(IDC_CMD_NEXT, kBaseHeading);
    wizard.SetText(IDC_TXT_PROG_PATH, program.Tree());
    wizard.GoTo(IDC_CMD_NEXT, kPluginsHeading);
    const HWND list = wizard.Control(IDC_LST_PLUGINS);
    const LRESULT spacing = SendMessageA(list, LVM_GETITEMSPACING, TRUE, 0);
    const LONG line = HeightOf(reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0))) +
                      HIWORD(spacing) / 2;
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
        PostMessageA(list, message, MK_LBUTTON, MAKELPARAM(60, line + 6));
    const HWND item = wizard.AwaitDialog("Component");
    CHECK(TextIn(item, IDC_LBL_ITEM_NAME) == "Alpha");
    WizardDriver::Answer(item, IDCANCEL);
    wizard.GoTo(IDC_CMD_NEXT, kSummaryHeading);
    wizard.Click(IDC_CMD_NEXT);
    AwaitFinish(wizard);
    PostMessageA(wizard.Window(), WM_NEXTDLGCTL,
                 reinterpret_cast<WPARAM>(wizard.Control(IDC_LST_PROGRESS)), TRUE);
    REQUIRE(WaitUntil([&] { return FocusOf(wizard) == wizard.Control(IDC_LST_PROGRESS); }, 5000));
    PressKey(wizard, 'A', true);
    PressKey(wizard, 'C', true);
    CHECK(AwaitClipboard(Joined(wizard.LogLines())));
}

TEST_CASE("a usable source is green, another one dark red") {
    const ProgramFolder program;
    const std::string layout = program.Folder().Write("cd\\I386\\LAYOUT.INF", "x");
    program.Folder().Write("cd\\I386\\SETUPLDR.BIN", "x");
    program.Folder().Write("cd\\I386\\NTDLL.DLL", "x");
    const WizardDriver wizard(program.Wizard());
    wizard.GoTo(IDC_CMD_NEXT, kBaseHeading);
    const HWND field = wizard.Control(IDC_TXT_WIN_PATH);
    for (const bool usable : {true, false}) {
        if (!usable)
            RemoveFile(layout);
        PostMessageA(wizard.Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(field), TRUE);
        REQUIRE(WaitUntil([&] { return FocusOf(wizard) == field; }, 5000));
        wizard.SetText(IDC_TXT_WIN_PATH, program.Folder() / (usable ? "cd" : "cd\\I386\\.."));
        PostMessageA(field, WM_KEYDOWN, VK_TAB, 1);
        CHECK(WaitUntil([&] { return Shows(field, usable ? RGB(0, 130, 0) : RGB(140, 0, 0)); },
                        5000));
        CHECK_FALSE(Shows(field, usable ? RGB(140, 0, 0) : RGB(0, 130, 0)));
    }
}

TEST_CASE("resting the mouse on a line tells about its archive") {
    const auto& [program, wizard] = Opened(kPluginsHeading);
    const HWND list = wizard.Control(IDC_LST_PLUGINS);
    CHECK(wizard.CellText(list, 1, 0) == "Beta");
    CHECK(wizard.CellText(list, 1, 1) == "Tools");
    CHECK(WaitUntil([&] { return wizard.CellText(list, 1, 3) == "Good"; }));
    const RECT area = AreaOf(list);
    const LONG header = HeightOf(reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0)));
    SetForegroundWindow(wizard.Window());
    for (const LONG x : {40, 44}) // it has to move
        SetCursorPos(area.left + x, area.top + header + 10);
    CHECK(Holds(wizard.AwaitTip(), "Archive: Alpha.zip"));
}
