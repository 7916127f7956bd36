#include "EditorDriver.h"
#include "Growth.h"
#include "WizardSteps.h"

using namespace vesk;
using namespace vesk::test;

namespace {

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
    const Place stretched{0, 0, 200, 100};
    const ProgramFolder program;
    const Wizard wizard(program);
    CheckGrows(wizard.Window(),
               {{IDC_LST_PLUGINS, stretched},
                {IDC_LST_PROGRESS, stretched},
                {IDC_TXT_WELCOME, stretched},
                {IDC_PIC_FRAME1, stretched},
                {IDC_PIC_FRAME3, stretched},
                {IDC_LINE_TOP, {0, 0, 200, 0}},
                {IDC_LINE_BOTTOM, {0, 100, 200, 100}},
                {IDC_IMG_LOGO_SMALL, {200, 0, 200, 0}},
                {IDC_CMD_HELP, {0, 100, 0, 100}},
                {IDCANCEL, {200, 100, 200, 100}},
                {IDC_CMD_PROBLEMS, {0, 100, 0, 100}}},
               [&] { // before the pages with lists are there
                   for (const char* const page : {kBaseHeading, kPluginsHeading}) {
                       wizard.Next(page);
                       AWAIT(wizard, IsTidy(wizard.Window()));
                   }
               });
    const HWND list = wizard.Control(IDC_LST_PLUGINS);
    CHECK((GetWindowLongA(list, GWL_STYLE) & WS_HSCROLL) == 0);
    const LONG width = SizeOf(list).cx;
    Resize(GetParent(list), 100, 100); // which a page does not refuse
    CHECK(SizeOf(list).cx == width);
}

TEST_CASE("at the largest text sizes every window still fits on the screen") {
    const MessageFont font(36);
    ProgramFolder program;
    program.catalogue.plugins = {CatalogueEntry()}; // what an editor's empty list is saved as
    program.Save();
    const Wizard wizard(program);
    RECT work{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    CHECK(IsIn(work, AreaOf(wizard.Window())));
    AWAIT(wizard, IsTidy(wizard.Window()));
    wizard.Next(kBaseHeading);
    AWAIT(wizard, IsTidy(wizard.Window()));
    wizard.Next(kPluginsHeading);
    CHECK(SendMessageA(wizard.Control(IDC_LST_PLUGINS), LVM_GETITEMCOUNT, 0, 0) == 0);
    CHECK_FALSE(wizard.IsEnabled(IDC_CMD_PLUGIN_DETAILS));
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
    OnFinerMonitor(wizard, [&] {
        CHECK(listSize().cx == made.cx);
        CHECK(listSize().cy == made.cy);
    });
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
    PostMessageA(box, WM_KEYDOWN, VK_SPACE, 1); // the caret is there now
    AWAIT(wizard, std::ranges::count(ReadWholeFile(trace), '\n') == 2);
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
    program.catalogue.plugins[0].url = "http://a/x, http://b/y";
    program.Save();
    const Wizard wizard(program);
    wizard.GoToPlugins();
    const HWND list = wizard.Control(IDC_LST_PLUGINS);
    CheckHolds(wizard.AwaitTip(list), "Archive: Alpha.zip");
    const HWND tip = FindWindowA(TOOLTIPS_CLASSA, nullptr); // the uppermost one
    CHECK(SizeOf(tip).cx < 480);                            // pixels: wrapped

    wizard.Press(VK_DOWN); // it is about a line that moves away
    CHECK(WaitUntil([&] { return !IsWindowVisible(tip); }, 15000));

    for (const int left : {8, 8, 60}) // twice on the tick, which is then what it was
        DoubleClickLine(list, 0, left);
    const HWND dialog = wizard.AwaitDialog("Component");
    wizard.CheckShows(dialog, "details");
    const HWND field = GetDlgItem(dialog, IDC_LBL_ITEM_NAME);
    const LRESULT lines = SendMessageA(field, EM_GETLINECOUNT, 0, 0);
    CHECK(lines > 1);
    CHECK(SizeOf(field).cy >= lines * 11); // pixels, the lowest line
    wizard.Answer(dialog, IDCANCEL);
    CHECK(IsWindowEnabled(wizard.Window())); // no second one has opened
    const auto isOnlyDefault = [&](int id) {
        return std::ranges::all_of(ControlsOf(wizard.Window()), [&](HWND control) {
            const LRESULT kind = SendMessageA(control, WM_GETDLGCODE, 0, 0);
            return ((kind & DLGC_DEFPUSHBUTTON) != 0) == (GetDlgCtrlID(control) == id);
        });
    };
    wizard.FocusOn(IDC_CMD_PLUGIN_DETAILS);
    AWAIT(wizard, isOnlyDefault(IDC_CMD_PLUGIN_DETAILS));
    wizard.Press(VK_RETURN);
    wizard.Answer(wizard.AwaitDialog("Component"), IDCANCEL);
    wizard.FocusOn(IDC_LST_PLUGINS);
    AWAIT(wizard, isOnlyDefault(IDC_CMD_NEXT));
    wizard.GoTo(IDC_CMD_BACK, kBaseHeading);
    wizard.FocusOn(IDC_CMD_BASE_DETAILS);
    wizard.Press(VK_RETURN);
    const HWND base = wizard.AwaitDialog("Component");
    CHECK(TextIn(base, IDC_LBL_ITEM_NAME) == "PE Builder");
    CHECK(TextIn(base, IDC_TXT_ITEM_CATEGORY) == "base component");
}
