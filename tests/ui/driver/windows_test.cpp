#include "EditorDriver.h"
#include "WizardSteps.h"

#include <array>

using namespace vesk;
using namespace vesk::test;

namespace {

void Resize(HWND window, LONG width, LONG height) {
    SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
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

using Place = std::array<LONG, 4>; // left, top, right, bottom

/// Where a window stands within its parent.
Place PlaceOf(HWND window) {
    RECT place = AreaOf(window);
    MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&place), 2);
    return {place.left, place.top, place.right, place.bottom};
}

std::vector<Place> LayoutOf(HWND dialog) {
    std::vector<Place> places;
    for (const HWND control : ControlsOf(dialog))
        if (IsWindowVisible(control))
            places.push_back(PlaceOf(control));
    return places;
}

/// Takes a dialog to a monitor with one and a half times the resolution, looks, and takes it back.
template <class Look>
void OnFinerMonitor(const WizardDriver& program, const Look& look) {
    const RECT place = AreaOf(program.Window());
    const SIZE size = SizeOf(program.Window());
    const std::vector<Place> before = LayoutOf(program.Window());
    program.ChangeDpi(program.Window(), 144, {20, 20, 20 + size.cx * 3 / 2, 20 + size.cy * 3 / 2});
    look();
    program.ChangeDpi(program.Window(), 96, place);
    CHECK(LayoutOf(program.Window()) == before);
}

} // namespace

TEST_CASE("controls move and grow with the window as each was told, and never shrink") {
    struct Row {
        int id;
        Place gained; // by each edge, in a window that is 200 wider and 100 higher
    };
    constexpr std::array kRows{
        Row{IDC_LST_PLUGINS, {0, 0, 200, 100}},   Row{IDC_LINE_TOP, {0, 0, 200, 0}},
        Row{IDC_LINE_BOTTOM, {0, 100, 200, 100}}, Row{IDC_IMG_LOGO_SMALL, {200, 0, 200, 0}},
        Row{IDC_CMD_HELP, {0, 100, 0, 100}},      Row{IDCANCEL, {200, 100, 200, 100}},
        Row{IDC_CMD_PROBLEMS, {0, 100, 0, 100}}};
    const ProgramFolder program;
    const Wizard wizard(program);
    const SIZE size = SizeOf(wizard.Window());
    Resize(wizard.Window(), size.cx + 200, size.cy + 100); // before the pages with lists are there
    for (const char* const page : {kBaseHeading, kPluginsHeading}) {
        wizard.Next(page);
        AWAIT(wizard, IsTidy(wizard.Window()));
    }
    std::vector<Place> grown;
    for (const Row& row : kRows)
        grown.push_back(PlaceOf(wizard.Control(row.id)));
    Resize(wizard.Window(), 100, 100);
    CHECK(SizeOf(wizard.Window()).cx == size.cx); // never smaller than its controls need
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        Place gained = grown[i];
        const Place least = PlaceOf(wizard.Control(kRows[i].id));
        for (std::size_t edge = 0; edge < gained.size(); ++edge)
            gained[edge] -= least[edge];
        CAPTURE(kRows[i].id);
        CHECK(gained == kRows[i].gained);
    }
    const HWND list = wizard.Control(IDC_LST_PLUGINS);
    const LONG width = SizeOf(list).cx;
    Resize(GetParent(list), 100, 100); // which a page does not refuse
    CHECK(SizeOf(list).cx == width);
}

TEST_CASE("at the largest text sizes every window still fits on the screen") {
    const MessageFont font(36);
    const ProgramFolder program;
    const Wizard wizard(program);
    RECT work{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    CHECK(IsIn(work, AreaOf(wizard.Window())));
    AWAIT(wizard, IsTidy(wizard.Window()));
    wizard.Next(kBaseHeading);
    AWAIT(wizard, IsTidy(wizard.Window()));
}

TEST_CASE("on a monitor of another resolution everything is scaled, and back to what it was") {
    const ProgramFolder program;
    const Wizard wizard(program);
    const HWND cancel = wizard.Control(IDCANCEL);
    const LONG width = SizeOf(cancel).cx;
    const std::string welcome = wizard.Heading();
    const auto listSize = [&] {
        const HWND list = wizard.Control(IDC_LST_BASE);
        const LRESULT lines = SendMessageA(list, LVM_GETITEMSPACING, TRUE, 0);
        return SIZE{SizeOf(list).cx, HIWORD(lines)};
    };
    SIZE made{};
    OnFinerMonitor(wizard, [&] {
        CHECK(SizeOf(cancel).cx == doctest::Approx(1.5 * width).epsilon(0.02));
        wizard.Next(kBaseHeading); // the page is made there
        made = listSize();
        wizard.GoTo(IDC_CMD_BACK, welcome);
    });
    wizard.Next(kBaseHeading);
    const SIZE back = listSize();
    CHECK(made.cx == doctest::Approx(1.5 * back.cx).epsilon(0.03));
    CHECK(made.cy > back.cy * 5 / 4);
    OnFinerMonitor(wizard, [&] { CHECK(listSize().cx == made.cx); });
    const Editor editor(program);
    OnFinerMonitor(editor, [&] {
        CHECK(SizeOf(editor.Control(IDC_CMB_INSTALL_PATH)).cy ==
              SizeOf(editor.Control(IDC_TXT_FOLDER)).cy);
    });
}

TEST_CASE("a link opens by a click on it, and by none beside the text") {
    const ProgramFolder program;
    const std::string trace = program.Folder() / "opened.txt";
    const ChangedKey mailHandler(HKEY_LOCAL_MACHINE,
                                 R"(Software\Classes\mailto\shell\open\command)",
                                 R"(C:\windows\system32\cmd.exe /c echo %1 >> )" + trace);
    const Wizard wizard(program);
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
    AWAIT(wizard, ReadWholeFile(trace).ends_with('\n')); // written after the text, in its own time
    CHECK(std::ranges::count(ReadWholeFile(trace), '\n') == 1);
    CHECK(Holds(ReadWholeFile(trace), "mailto:"));
}

TEST_CASE("more plug-ins than can be ticked: said once, and the others keep what is built") {
    ProgramFolder program;
    program.catalogue.plugins.resize(300, program.catalogue.plugins.front());
    program.catalogue.plugins[299].enabled = false;
    program.Save();
    const Wizard wizard(program);
    wizard.GoToPlugins();
    const HWND list = wizard.Control(IDC_LST_PLUGINS);
    for (const WPARAM key : {VK_END, VK_SPACE})
        PostMessageA(list, WM_KEYDOWN, key, 0);
    PostMessageA(list, WM_KEYUP, VK_SPACE, 0);
    const std::string told = wizard.AnswerBox("Vesk Builder", IDOK);
    CheckHolds(told, "300");
    CheckHolds(told, "256");
    AWAIT(wizard, !IsTicked(list, 299));
    wizard.PressSpaceOn(IDC_LST_PLUGINS, 0);
    CHECK_FALSE(IsTicked(list, 0));
    CHECK(IsWindowEnabled(wizard.Window())); // no second box stands in the way
}

TEST_CASE("an entry's details open by a double click, with a long name as a whole") {
    ProgramFolder program;
    std::string name = "A name";
    while (name.size() < 200)
        name += " that goes on";
    program.catalogue.plugins[0].name = name;
    program.catalogue.plugins[0].crc = "1";
    program.Save();
    const Wizard wizard(program);
    wizard.GoToPlugins();
    const HWND list = wizard.Control(IDC_LST_PLUGINS);
    CheckHolds(wizard.AwaitTip(list), "Archive: Alpha.zip");

    DoubleClickLine(list, 0);
    const HWND dialog = wizard.AwaitDialog("Component");
    wizard.CheckShows(dialog, "details");
    const HWND field = GetDlgItem(dialog, IDC_LBL_ITEM_NAME);
    const LRESULT lines = SendMessageA(field, EM_GETLINECOUNT, 0, 0);
    CHECK(lines > 1);
    CHECK(SizeOf(field).cy >= lines * 11); // pixels, the lowest line
    wizard.Answer(dialog, IDCANCEL);
    wizard.Click(IDC_CMD_PLUGIN_DETAILS);
    wizard.Answer(wizard.AwaitDialog("Component"), IDCANCEL);
    wizard.GoTo(IDC_CMD_BACK, kBaseHeading);
    wizard.Click(IDC_CMD_BASE_DETAILS);
    CHECK(TextIn(wizard.AwaitDialog("Component"), IDC_LBL_ITEM_NAME) == "PE Builder");
}
