#include "ProgramFolder.h"
#include "WizardDriver.h"
#include "base/modText.h"
#include "catalogue/modCatalogueText.h"
#include "ui/resources/ids.h"

#include <commctrl.h>

#include <doctest/doctest.h>

using namespace vesk;
using namespace vesk::test;

namespace {

using Names = std::vector<std::string>;

// Indices in the form's control arrays.
constexpr int kFileName = 1;
constexpr int kAddress = 4;
constexpr int kChecksum = 5;
constexpr int kEnabled = 1;
constexpr int kLocked = 2;
constexpr int kCategory = 3;
constexpr int kAddBase = IDC_CMD_BUTTONS;
constexpr int kRemoveBase = IDC_CMD_BUTTONS + 1;
constexpr int kBrowseBase = IDC_CMD_BUTTONS + 2;
constexpr int kAddPlugin = IDC_CMD_BUTTONS + 3;
constexpr int kRemovePlugin = IDC_CMD_BUTTONS + 4;
constexpr int kBrowsePlugin = IDC_CMD_BUTTONS + 5;
constexpr int kUpBase = IDC_CMD_BUTTONS + 6;
constexpr int kDownBase = IDC_CMD_BUTTONS + 7;
constexpr int kUpPlugin = IDC_CMD_BUTTONS + 8;
constexpr int kDownPlugin = IDC_CMD_BUTTONS + 9;

class Editor : public WizardDriver {
public:
    explicit Editor(const ProgramFolder& program)
        : WizardDriver(program.Wizard(), "-SETUP further words", "Plugin Setup") {}

    /// Waits for what a selector offers.
    [[nodiscard]] bool Offers(int selector, const Names& names) const {
        return WaitUntil([&] { return Items(selector) == names; }, 5000);
    }

    /// Waits for the sentence beside the actions.
    [[nodiscard]] bool Says(const std::string& sentence) const {
        return WaitUntil([&] { return Text(IDC_LBL_STATE) == sentence; }, 5000);
    }

    [[nodiscard]] bool HasFocus(int id) const {
        return WaitUntil([&] { return Focus() == Control(id); }, 5000);
    }
    void FocusOn(int id) const {
        SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(id)), TRUE);
        REQUIRE(HasFocus(id));
    }
    /// Presses a key where the keyboard is.
    void Press(WPARAM key) const { PostMessageA(Focus(), WM_KEYDOWN, key, 1); }

    /// Waits for a message box, checks its text and answers it.
    void AnswerBox(const std::string& title, const std::string& text, int button) const {
        const HWND box = AwaitDialog(title);
        CHECK(BoxText(box) == text);
        Answer(box, button);
    }

private:
    [[nodiscard]] HWND Focus() const {
        GUITHREADINFO info{};
        info.cbSize = sizeof info;
        GetGUIThreadInfo(GetWindowThreadProcessId(Window(), nullptr), &info);
        return info.hwndFocus;
    }
};

/// The catalogue file from its first section on; what stands before it holds the date.
std::string SavedText(const ProgramFolder& program) {
    const std::string text = ReadWholeFile(program.Path() + kCatalogueFileName);
    return text.substr(std::min(text.find('['), text.size()));
}

std::string TextOfCatalogue(const Catalogue& catalogue) {
    const std::string text = CatalogueText(catalogue, "");
    return text.substr(text.find('['));
}

LONG Width(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return area.right - area.left;
}

/// Runs a program to its end. @return its exit code
DWORD Run(const std::string& commandLine) {
    std::string line = commandLine;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    REQUIRE(CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                           &startup, &started));
    CloseHandle(started.hThread);
    const UniqueHandle<::CloseHandle, HANDLE> process(started.hProcess);
    REQUIRE(WaitForSingleObject(process.Get(), 60000) == WAIT_OBJECT_0);
    DWORD code = 0;
    GetExitCodeProcess(process.Get(), &code);
    return code;
}

} // namespace

TEST_CASE("a plug-in is added, filled in, moved and saved, and a build takes it") {
    ProgramFolder program;
    program.catalogue.categories.push_back({"200_some_apps", "200", ""});
    program.Save();
    const std::string crc = program.WriteArchive(
        "delta.zip",
        {TestMember::Stored("delta.inf", "[PEBuilder]\r\nName=\"x\"\r\nEnable=1\r\n")});
    const std::string before = SavedText(program);
    const Editor editor(program);
    CHECK(editor.Items(IDC_CMB_BASE) == Names{"PE Builder", "Extras"});
    CHECK(editor.Items(IDC_CMB_BASE + kLocked) == Names{"True", "False"});
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN + kCategory) == Names{"100 - Tools", "200 - Some Apps"});
    CHECK(editor.Text(IDC_TXT_FOLDER) == "VeskUiTest");
    CHECK(editor.Items(IDC_CMB_INSTALL_PATH) == Names{"C:\\", "C:\\Program Files\\"});
    CHECK(editor.Chosen(IDC_CMB_INSTALL_PATH) == 0);
    CHECK(editor.Text(IDC_LBL_STATE).empty()); // nothing was written back while it was shown

    editor.Click(kAddPlugin);
    REQUIRE(editor.Offers(IDC_CMB_BASE_PLUGIN, {"Alpha", "Beta", "Gamma", ""}));
    CHECK(editor.Text(IDC_TXT_BASE_PLUGIN + kFileName).empty());
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN + kEnabled) == 1);
    editor.Type(IDC_TXT_BASE_PLUGIN, "Delta");
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN) == Names{"Alpha", "Beta", "Gamma", "Delta"});
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN) == 3);
    editor.Type(IDC_TXT_BASE_PLUGIN + kFileName, "delta.zip");
    editor.Type(IDC_TXT_BASE_PLUGIN + kChecksum, crc);
    editor.Choose(IDC_CMB_BASE_PLUGIN + kEnabled, 0);
    editor.Choose(IDC_CMB_BASE_PLUGIN + kCategory, 1);
    CHECK_FALSE(editor.IsEnabled(kDownPlugin)); // it is the last one
    editor.Click(kUpPlugin);
    editor.Click(kUpPlugin);
    REQUIRE(editor.Offers(IDC_CMB_BASE_PLUGIN, {"Alpha", "Delta", "Beta", "Gamma"}));
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN) == 1);
    CHECK(editor.Text(IDC_TXT_BASE_PLUGIN) == "Delta");
    editor.Choose(IDC_CMB_BASE_PLUGIN, 2);
    CHECK(editor.Text(IDC_TXT_BASE_PLUGIN + kFileName) == "Beta.zip");
    editor.Click(kDownBase);
    REQUIRE(editor.Offers(IDC_CMB_BASE, {"Extras", "PE Builder"}));
    editor.Click(kUpBase);
    REQUIRE(editor.Offers(IDC_CMB_BASE, {"PE Builder", "Extras"}));
    editor.Choose(IDC_CMB_BASE, 1);
    editor.Choose(IDC_CMB_INSTALL_PATH, 1);
    CHECK(SavedText(program) == before);
    editor.Type(IDC_TXT_BASE + kAddress, "http://host.invalid/extras.zip");
    editor.Click(IDC_CMD_APPLY); // straight from the field
    REQUIRE(editor.Says("Saved."));
    CHECK(editor.Chosen(IDC_CMB_BASE) == 1);
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN) == 2);

    Catalogue expected = program.catalogue;
    expected.installPathFlag = "1";
    expected.baseComponents[1].url = "http://host.invalid/extras.zip";
    expected.plugins.insert(expected.plugins.begin() + 1,
                            {"Delta", "delta.zip", "200", true, false, "", crc});
    CHECK(SavedText(program) == TextOfCatalogue(expected));
    editor.Click(IDCANCEL);
    CHECK(editor.AwaitEnd() == 0);

    CHECK(Run("\"" + program.Console() + "\" --install \"" + program.Tree() + "\"") == 0);
    CHECK(FileExists(program.Tree() + "\\Plugin\\200_some_apps\\Delta\\delta.inf"));
}

TEST_CASE("entries are removed after a Yes, locked ones never, and Discard brings all back") {
    const ProgramFolder program;
    program.Save();
    const Editor editor(program);
    editor.Click(kRemoveBase);
    editor.AnswerBox("Locked", "Plugin is locked, unlock plugin\r\nto delete...", IDOK);
    CHECK(editor.Items(IDC_CMB_BASE) == Names{"PE Builder", "Extras"});
    const std::string question = "Are you sure you want to remove this entry ?\r\n'Alpha'";
    editor.Click(kRemovePlugin);
    editor.AnswerBox("Confirmation", question, IDNO);
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN) == Names{"Alpha", "Beta", "Gamma"});
    CHECK(editor.Text(IDC_LBL_STATE).empty());
    editor.Click(kRemovePlugin);
    editor.AnswerBox("Confirmation", question, IDYES);
    REQUIRE(editor.Offers(IDC_CMB_BASE_PLUGIN, {"Beta", "Gamma"}));
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN) == -1);
    CHECK_FALSE(editor.IsEnabled(IDC_TXT_BASE_PLUGIN));
    CHECK_FALSE(editor.IsEnabled(kBrowsePlugin));
    editor.SetText(IDC_TXT_BASE_PLUGIN, "nobody"); // as assistive tools can, disabled or not
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN) == Names{"Beta", "Gamma"});

    editor.Choose(IDC_CMB_BASE_PLUGIN, 1);
    CHECK(editor.Text(IDC_TXT_BASE_PLUGIN) == "Gamma");
    CHECK(editor.IsEnabled(IDC_TXT_BASE_PLUGIN));
    editor.Choose(IDC_CMB_BASE_PLUGIN + kLocked, 1); // unlocked, it goes
    editor.Click(kRemovePlugin);
    WizardDriver::Answer(editor.AwaitDialog("Confirmation"), IDYES);
    REQUIRE(editor.Offers(IDC_CMB_BASE_PLUGIN, {"Beta"}));
    editor.Click(kRemovePlugin);
    WizardDriver::Answer(editor.AwaitDialog("Confirmation"), IDYES);
    REQUIRE(editor.Offers(IDC_CMB_BASE_PLUGIN, {""}));
    editor.Click(kAddBase);
    REQUIRE(editor.Offers(IDC_CMB_BASE, {"PE Builder", "Extras", ""}));
    editor.Type(IDC_TXT_FOLDER, "Other");
    CHECK(editor.Text(IDC_LBL_STATE) == "There are unsaved edits.");

    editor.Click(IDC_CMD_DISCARD);
    REQUIRE(editor.Offers(IDC_CMB_BASE_PLUGIN, {"Alpha", "Beta", "Gamma"}));
    CHECK(editor.Text(IDC_TXT_BASE_PLUGIN) == "Alpha");
    CHECK(editor.Offers(IDC_CMB_BASE, {"PE Builder", "Extras"}));
    CHECK(editor.Text(IDC_TXT_FOLDER) == "VeskUiTest");
    editor.Click(IDCANCEL);
    CHECK(editor.AwaitEnd() == 0);
    CHECK(SavedText(program) == TextOfCatalogue(program.catalogue));
}

TEST_CASE("unsaved edits are asked about, and survive a save that fails") {
    ProgramFolder program;
    program.Save();
    const std::string question = "Save the edits to the catalogue before leaving ?";
    const std::string file = program.Path() + kCatalogueFileName;
    {
        const Editor editor(program);
        editor.Type(IDC_TXT_BASE, "Renamed");
        editor.Click(IDCANCEL);
        editor.AnswerBox("Plugin Setup", question, IDCANCEL);
        CHECK_FALSE(editor.HasEnded());
        PostMessageA(editor.Window(), WM_CLOSE, 0, 0);
        editor.AnswerBox("Plugin Setup", question, IDNO);
        CHECK(editor.AwaitEnd() == 0);
        CHECK(SavedText(program) == TextOfCatalogue(program.catalogue));
    }
    const Editor editor(program);
    editor.Type(IDC_TXT_BASE, "Renamed");
    RemoveFile(file);
    CreateFolder(file); // what a save cannot replace
    editor.Click(IDCANCEL);
    editor.AnswerBox("Plugin Setup", question, IDYES);
    const HWND box = editor.AwaitDialog("Plugin Setup");
    CHECK(WizardDriver::BoxText(box).starts_with("The catalogue could not be saved.\r\n"));
    CHECK(WizardDriver::BoxText(box).find(kCatalogueFileName) != std::string::npos);
    WizardDriver::Answer(box, IDOK);
    CHECK_FALSE(editor.HasEnded());
    CHECK(editor.Text(IDC_TXT_BASE) == "Renamed");
    CHECK(editor.Text(IDC_LBL_STATE) == "There are unsaved edits.");
    RemoveDirectoryA(file.c_str());
    editor.Click(IDCANCEL);
    editor.AnswerBox("Plugin Setup", question, IDYES);
    CHECK(editor.AwaitEnd() == 0);
    program.catalogue.baseComponents[0].name = "Renamed";
    CHECK(SavedText(program) == TextOfCatalogue(program.catalogue));
}

TEST_CASE("browsing for an archive fills in its name and checksum") {
    const ProgramFolder program;
    program.Save();
    const std::string crc =
        program.WriteArchive("other.zip", {TestMember::Stored("other.txt", "x")});
    const Editor editor(program);
    editor.Click(kBrowseBase);
    WizardDriver::Answer(editor.AwaitDialog("Browse for File"), IDCANCEL);
    CHECK(editor.Text(IDC_TXT_BASE + kFileName) == "pebuilder3110a.zip");
    editor.Click(kBrowseBase);
    const HWND dialog = editor.AwaitDialog("Browse for File");
    WizardDriver::TypeInto(dialog, program.Path() + "other.zip");
    WizardDriver::Answer(dialog, IDOK);
    CHECK(WaitUntil([&] { return editor.Text(IDC_TXT_BASE + kFileName) == "other.zip"; }, 5000));
    CHECK(editor.Text(IDC_TXT_BASE + kChecksum) == crc);
}

TEST_CASE("the check goes through the edited catalogue and leads to the entry") {
    ProgramFolder program;
    for (const char* key : {"200", "300", "500"})
        program.catalogue.categories.push_back({std::string(key) + "_x", key, ""});
    program.catalogue.plugins[1].cat = "gone";
    program.Save();
    const Editor editor(program);
    editor.Choose(IDC_CMB_BASE_PLUGIN, 1);
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN + kCategory).back() == "gone (no such category)");
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN + kCategory) == 4);
    editor.Choose(IDC_CMB_BASE_PLUGIN + kCategory, 0);
    editor.Choose(IDC_CMB_BASE_PLUGIN + kCategory, 4); // back to what it was
    CHECK(editor.Text(IDC_LBL_STATE).empty());
    editor.Choose(IDC_CMB_BASE_PLUGIN, 0);
    editor.Type(IDC_TXT_BASE + kChecksum, "0");
    editor.Click(IDC_CMD_CHECK);
    const HWND dialog = editor.AwaitDialog("Check");
    const HWND list = GetDlgItem(dialog, IDC_LST_PROBLEMS);
    CHECK(SendMessageA(list, LB_GETCOUNT, 0, 0) == 2); // the present archive, the category
    const LONG listWidth = Width(list);
    SetWindowPos(dialog, nullptr, 0, 0, Width(dialog) + 90, 0, SWP_NOMOVE | SWP_NOZORDER);
    CHECK(WaitUntil([&] { return Width(list) == listWidth + 90; }, 5000));
    SendMessageA(list, WM_KEYDOWN, VK_DOWN, 1);
    WizardDriver::Answer(dialog, IDC_CMD_GO_TO);
    REQUIRE(WaitUntil([&] { return editor.Text(IDC_TXT_BASE_PLUGIN) == "Beta"; }, 5000));

    editor.Choose(IDC_CMB_BASE_PLUGIN + kCategory, 0);
    editor.Click(IDC_CMD_DISCARD);
    REQUIRE(editor.Says("Edits dropped."));
    editor.Choose(IDC_CMB_BASE_PLUGIN, 1);
    editor.Choose(IDC_CMB_BASE_PLUGIN + kCategory, 0);
    editor.Click(IDC_CMD_CHECK);
    editor.AnswerBox("Check",
                     "No fault found: the entries are complete, and 5 archives are present with "
                     "the right CRC-32 and sound to the last member.",
                     IDOK);
}

TEST_CASE("the Tab key visits every control of the editor in reading order") {
    ProgramFolder program;
    program.AddBase("Third", "third.zip", {TestMember::Stored("x.txt", "x")});
    program.Save();
    const Editor editor(program);
    editor.Choose(IDC_CMB_BASE, 1); // with neighbours on both sides, and an edit to apply
    editor.Choose(IDC_CMB_BASE_PLUGIN, 1);
    editor.Type(IDC_TXT_FOLDER, "Other");
    editor.FocusOn(IDC_CMB_BASE);
    std::vector<int> order;
    const auto addFrame = [&](int combo, int text, const std::vector<int>& buttons) {
        for (const int id : {combo, text, text + kFileName, buttons.front(), text + kChecksum,
                             text + kAddress, combo + kEnabled, combo + kLocked})
            order.push_back(id);
        if (combo == IDC_CMB_BASE_PLUGIN)
            order.push_back(combo + kCategory);
        order.insert(order.end(), buttons.begin() + 1, buttons.end());
    };
    addFrame(IDC_CMB_BASE, IDC_TXT_BASE, {kBrowseBase, kAddBase, kRemoveBase, kUpBase, kDownBase});
    addFrame(IDC_CMB_BASE_PLUGIN, IDC_TXT_BASE_PLUGIN,
             {kBrowsePlugin, kAddPlugin, kRemovePlugin, kUpPlugin, kDownPlugin});
    for (const int id : {IDC_TXT_FOLDER, IDC_CMB_INSTALL_PATH, IDC_CMD_CHECK, IDC_CMD_CATEGORIES,
                         IDC_CMD_APPLY, IDC_CMD_DISCARD, IDCANCEL, IDC_CMB_BASE})
        order.push_back(id);
    editor.CheckTabOrder(order);
}

TEST_CASE("a catalogue that breaks off is explained before anything can be lost") {
    const ProgramFolder program;
    program.Save();
    const std::string file = program.Path() + kCatalogueFileName;
    const std::string text = ReadWholeFile(file);
    WriteCompleteFile(file, text.substr(0, text.find("[Categories]")));
    const Editor editor(program);
    const HWND box = editor.AwaitDialog("Plugin Setup");
    CHECK(WizardDriver::BoxText(box).find("it has 3 sections") != std::string::npos);
    WizardDriver::Answer(box, IDOK);
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN) == Names{"Alpha", "Beta", "Gamma"});
}

TEST_CASE("Enter goes on to the next field; Apply keeps the entry and the caret") {
    ProgramFolder program;
    program.Save();
    const std::string before = SavedText(program);
    const Editor editor(program);
    editor.Choose(IDC_CMB_BASE_PLUGIN, 1);
    editor.Type(IDC_TXT_BASE_PLUGIN, "Renamed");
    editor.FocusOn(IDC_TXT_BASE_PLUGIN);
    editor.Press(VK_RETURN);
    CHECK(editor.HasFocus(IDC_TXT_BASE_PLUGIN + kFileName));
    CHECK(editor.Text(IDC_LBL_STATE) == "There are unsaved edits.");
    CHECK(SavedText(program) == before);
    editor.Press(VK_RETURN);
    CHECK(editor.HasFocus(kBrowsePlugin));

    editor.FocusOn(IDC_TXT_BASE_PLUGIN + kAddress);
    editor.Type(IDC_TXT_BASE_PLUGIN + kAddress, "http://host/x");
    const HWND address = editor.Control(IDC_TXT_BASE_PLUGIN + kAddress);
    SendMessageA(address, EM_SETSEL, 4, 7);
    editor.FocusOn(IDC_CMD_APPLY);
    editor.Press(VK_SPACE);
    PostMessageA(editor.Control(IDC_CMD_APPLY), WM_KEYUP, VK_SPACE, 1);
    REQUIRE(editor.Says("Saved."));
    CHECK(editor.HasFocus(IDC_TXT_BASE_PLUGIN + kAddress));
    CHECK(SendMessageA(address, EM_GETSEL, 0, 0) == MAKELRESULT(4, 7));
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN) == 1);
    CHECK_FALSE(editor.IsEnabled(IDC_CMD_APPLY));
    program.catalogue.plugins[1].name = "Renamed";
    program.catalogue.plugins[1].url = "http://host/x";
    CHECK(SavedText(program) == TextOfCatalogue(program.catalogue));
}

TEST_CASE("buttons are enabled only while they would do something") {
    const ProgramFolder program;
    program.Save();
    const Editor editor(program);
    struct Row {
        int entry;
        bool up, down;
    };
    CHECK_FALSE(editor.IsEnabled(IDC_CMD_APPLY));
    CHECK_FALSE(editor.IsEnabled(IDC_CMD_DISCARD));
    for (const Row& row : {Row{0, false, true}, Row{1, true, true}, Row{2, true, false}}) {
        CAPTURE(row.entry);
        editor.Choose(IDC_CMB_BASE_PLUGIN, row.entry);
        CHECK(editor.IsEnabled(kUpPlugin) == row.up);
        CHECK(editor.IsEnabled(kDownPlugin) == row.down);
        CHECK(editor.IsEnabled(kRemovePlugin));
    }
    CHECK_FALSE(editor.IsEnabled(kUpBase));
    CHECK(editor.IsEnabled(kDownBase));
    // The keyboard does not stay in a button that has done its last move.
    editor.Choose(IDC_CMB_BASE_PLUGIN, 1);
    editor.FocusOn(kDownPlugin);
    editor.Click(kDownPlugin);
    CHECK(editor.HasFocus(kUpPlugin));
    CHECK_FALSE(editor.IsEnabled(kDownPlugin));
    CHECK(editor.IsEnabled(IDC_CMD_APPLY));
    editor.FocusOn(IDC_CMD_DISCARD);
    editor.Click(IDC_CMD_DISCARD);
    REQUIRE(editor.Says("Edits dropped."));
    CHECK_FALSE(editor.IsEnabled(IDC_CMD_APPLY));
    CHECK_FALSE(editor.IsEnabled(IDC_CMD_DISCARD));
}

namespace {

/// The categories dialog of an editor.
class CategoriesDialog {
public:
    explicit CategoriesDialog(const Editor& editor) {
        editor.Click(IDC_CMD_CATEGORIES);
        window = editor.AwaitDialog("Categories");
    }
    [[nodiscard]] HWND Control(int id) const { return GetDlgItem(window, id); }
    void Press(int button) const { SendMessageA(Control(button), BM_CLICK, 0, 0); }
    void Type(int field, const std::string& text) const {
        SendMessageA(Control(field), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    void Select(int line) const {
        SendMessageA(Control(IDC_LST_CATEGORIES), WM_KEYDOWN, VK_HOME, 1);
        for (int i = 0; i < line; ++i)
            SendMessageA(Control(IDC_LST_CATEGORIES), WM_KEYDOWN, VK_DOWN, 1);
    }
    [[nodiscard]] LRESULT Count() const {
        return SendMessageA(Control(IDC_LST_CATEGORIES), LVM_GETITEMCOUNT, 0, 0);
    }

    HWND window = nullptr;
};

} // namespace

TEST_CASE("categories are edited, and plug-ins follow a key that became another") {
    ProgramFolder program;
    program.catalogue.categories.push_back({"200_some_apps", "200", ""});
    program.catalogue.plugins[1].cat = "200";
    program.Save();
    const Editor editor(program);
    {
        const CategoriesDialog dialog(editor);
        CHECK(dialog.Count() == 2);
        CHECK(IsWindowEnabled(dialog.Control(IDC_CMD_CATEGORY_UP)) == FALSE);
        dialog.Type(IDC_TXT_CATEGORY_KEY, "dropped");
        WizardDriver::Answer(dialog.window, IDCANCEL);
        CHECK(editor.Text(IDC_LBL_STATE).empty());
    }
    const CategoriesDialog dialog(editor);
    dialog.Type(IDC_TXT_CATEGORY_KEY, "110");
    dialog.Press(IDC_CMD_CATEGORY_DOWN);
    dialog.Press(IDC_CMD_CATEGORY_ADD);
    dialog.Type(IDC_TXT_CATEGORY_KEY, "200");
    dialog.Type(IDC_TXT_CATEGORY_FOLDER, "300_new_ones");
    dialog.Press(IDC_CHK_SHOW_CATEGORIES);
    PostMessageA(dialog.Control(IDOK), BM_CLICK, 0, 0);
    editor.AnswerBox("Category",
                     "The category '200': there is a category with the key \"200\" before it.",
                     IDOK);
    dialog.Type(IDC_TXT_CATEGORY_KEY, "300");
    WizardDriver::Answer(dialog.window, IDOK);
    REQUIRE(editor.Says("There are unsaved edits."));
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN + kCategory) ==
          Names{"200 - Some Apps", "110 - 100 Tools", "300 - New Ones"});
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN + kCategory) == 1);
    editor.Click(IDC_CMD_APPLY);
    REQUIRE(editor.Says("Saved."));
    Catalogue expected = program.catalogue;
    expected.categories = {
        {"200_some_apps", "200", ""}, {"100_tools", "110", ""}, {"300_new_ones", "300", ""}};
    expected.showCategories = true;
    expected.plugins[0].cat = "110";
    expected.plugins[2].cat = "110";
    CHECK(SavedText(program) == TextOfCatalogue(expected));

    // A category that plug-ins are in does not go without a question.
    const CategoriesDialog again(editor);
    again.Select(1);
    PostMessageA(again.Control(IDC_CMD_CATEGORY_REMOVE), BM_CLICK, 0, 0);
    const HWND box = editor.AwaitDialog("Category");
    CHECK(WizardDriver::BoxText(box).find("holds 2 plug-ins") != std::string::npos);
    WizardDriver::Answer(box, IDNO);
    CHECK(again.Count() == 3);
    WizardDriver::Answer(again.window, IDCANCEL);
}

TEST_CASE("a catalogue is begun from nothing") {
    const ProgramFolder program;
    const std::string file = program.Path() + kCatalogueFileName;
    {
        const Editor editor(program);
        WizardDriver::Answer(editor.AwaitDialog("Plugin Setup"), IDNO);
        CHECK(editor.Items(IDC_CMB_BASE) == Names{""});
        editor.Click(IDCANCEL);
        CHECK(editor.AwaitEnd() == 0);
        CHECK_FALSE(FileExists(file));
    }
    const Editor editor(program);
    WizardDriver::Answer(editor.AwaitDialog("Plugin Setup"), IDYES);
    REQUIRE(editor.Says("There are unsaved edits."));
    CHECK(editor.Text(IDC_TXT_BASE + kFileName) == "pebuilder3110a.zip");
    CHECK(editor.Text(IDC_TXT_BASE + kChecksum) == program.catalogue.baseComponents[0].crc);
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN + kCategory).size() ==
          5); // and the empty plug-in's none
    CHECK_FALSE(FileExists(file));
    editor.Click(IDC_CMD_CHECK);
    CHECK(WizardDriver::BoxText(editor.AwaitDialog("Check")).starts_with("No fault found"));
    WizardDriver::Answer(editor.AwaitDialog("Check"), IDOK);
    editor.Click(IDC_CMD_APPLY);
    REQUIRE(editor.Says("Saved."));
    Catalogue catalogue;
    CHECK(LoadCatalogueReporting(program.Path(), catalogue).state == CatalogueState::Whole);
    CHECK(catalogue.categories.size() == 4);
    CHECK(catalogue.showCategories);
}

TEST_CASE("nothing that others wrote, or that could not be read, is written over unasked") {
    ProgramFolder program;
    program.Save();
    const std::string file = program.Path() + kCatalogueFileName;
    const std::string whole = ReadWholeFile(file);
    {
        const Editor editor(program);
        editor.Type(IDC_TXT_FOLDER, "Mine");
        const std::string theirs = ReplaceAll(whole, "VeskUiTest", "Theirs");
        WriteCompleteFile(file, theirs);
        editor.Click(IDC_CMD_APPLY);
        HWND box = editor.AwaitDialog("Plugin Setup");
        CHECK(WizardDriver::BoxText(box).find("changed by another program") != std::string::npos);
        WizardDriver::Answer(box, IDNO);
        CHECK(ReadWholeFile(file) == theirs);
        CHECK(editor.Text(IDC_LBL_STATE) == "There are unsaved edits.");
        editor.Click(IDC_CMD_APPLY);
        WizardDriver::Answer(editor.AwaitDialog("Plugin Setup"), IDYES);
        REQUIRE(editor.Says("Saved."));
        program.catalogue.installFolder = "Mine";
        CHECK(SavedText(program) == TextOfCatalogue(program.catalogue));
        editor.Type(IDC_TXT_FOLDER, "Again"); // what it wrote itself is no change by others
        editor.Click(IDC_CMD_APPLY);
        REQUIRE(editor.Says("Saved."));
    }
    WriteCompleteFile(file, ReplaceAll(whole, "Enabled1=0", "Enabled1=maybe"));
    const Editor editor(program);
    WizardDriver::Answer(editor.AwaitDialog("Plugin Setup"), IDOK);
    editor.Click(IDC_CMD_APPLY); // enabled without an edit: it mends the file
    HWND box = editor.AwaitDialog("Plugin Setup");
    CHECK(WizardDriver::BoxText(box).find("could be read") != std::string::npos);
    WizardDriver::Answer(box, IDYES);
    REQUIRE(editor.Says("Saved."));
    CHECK_FALSE(editor.IsEnabled(IDC_CMD_APPLY));
}

TEST_CASE("an archive from elsewhere can be copied into the program folder") {
    const ProgramFolder program;
    program.Save();
    const std::string outside =
        program.Folder().Write("elsewhere\\new.zip", MakeZip({TestMember::Stored("a.txt", "a")}));
    const Editor editor(program);
    const auto browse = [&](int answer) {
        editor.Click(kBrowseBase);
        const HWND dialog = editor.AwaitDialog("Browse for File");
        WizardDriver::TypeInto(dialog, outside);
        WizardDriver::Answer(dialog, IDOK);
        const HWND box = editor.AwaitDialog("Browse for File");
        CHECK(WizardDriver::BoxText(box).find("is not in the program folder") != std::string::npos);
        WizardDriver::Answer(box, answer);
    };
    browse(IDCANCEL);
    CHECK(editor.Text(IDC_TXT_BASE + kFileName) == "pebuilder3110a.zip");
    CHECK_FALSE(FileExists(program.Path() + "new.zip"));
    browse(IDYES);
    CHECK(WaitUntil([&] { return editor.Text(IDC_TXT_BASE + kFileName) == "new.zip"; }, 5000));
    CHECK(ReadWholeFile(program.Path() + "new.zip") == ReadWholeFile(outside));
    CHECK(editor.Text(IDC_TXT_BASE + kChecksum) == clsCRC().CalculateFile(outside));
}
