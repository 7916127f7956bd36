#include "ProgramFolder.h"
#include "WizardDriver.h"
#include "catalogue/modCatalogueText.h"
#include "ui/resources/ids.h"

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

    /// Waits for a message box, checks its text and answers it.
    void AnswerBox(const std::string& title, const std::string& text, int button) const {
        const HWND box = AwaitDialog(title);
        CHECK(BoxText(box) == text);
        Answer(box, button);
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
    editor.Click(kDownPlugin); // it is the last one
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
    CHECK(editor.Chosen(IDC_CMB_BASE) == 0);
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN) == 0);

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
    editor.AnswerBox("Check", "Nothing to mend: a build can work with this catalogue as it is.",
                     IDOK);
}

TEST_CASE("the Tab key visits every control of the editor in reading order") {
    const ProgramFolder program;
    program.Save();
    const Editor editor(program);
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
    for (const int id : {IDC_TXT_FOLDER, IDC_CMB_INSTALL_PATH, IDC_CMD_CHECK, IDC_CMD_APPLY,
                         IDC_CMD_DISCARD, IDCANCEL, IDC_CMB_BASE})
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
