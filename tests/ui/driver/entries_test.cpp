#include "EditorDriver.h"

#include "base/modText.h"

#include <commctrl.h>

#include <doctest/doctest.h>

using namespace vesk;
using namespace vesk::test;

namespace {

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

LONG Width(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return area.right - area.left;
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

TEST_CASE("the check goes through the edited catalogue and leads to the entry") {
    ProgramFolder program;
    for (const char* key : {"200", "300", "500"})
        program.catalogue.categories.push_back({std::string(key) + "_x", key, ""});
    program.catalogue.plugins[1].cat = "gone";
    program.Save();
    const std::string digests = program.Folder().Write("program\\veskbuilder.sha256", "none\n");
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
    // The present archive, the category, the list of digests.
    CHECK(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0) == 3);
    CHECK(editor.CellText(list, 1, 0) == "plug-in \"Beta\"");
    CHECK(TextIn(dialog, IDC_TXT_PROBLEM).starts_with("base component \"PE Builder\": "));
    const LONG listWidth = Width(list);
    SetWindowPos(dialog, nullptr, 0, 0, Width(dialog) + 90, 0, SWP_NOMOVE | SWP_NOZORDER);
    CHECK(WaitUntil([&] { return Width(list) == listWidth + 90; }, 5000));
    SendMessageA(list, WM_KEYDOWN, VK_DOWN, 1);
    CHECK(TextIn(dialog, IDC_TXT_PROBLEM) == "plug-in \"Beta\": there is no category \"gone\"");
    WizardDriver::Answer(dialog, IDC_CMD_GO_TO);
    REQUIRE(WaitUntil([&] { return editor.Text(IDC_TXT_BASE_PLUGIN) == "Beta"; }, 5000));

    editor.Choose(IDC_CMB_BASE_PLUGIN + kCategory, 0);
    editor.Click(IDC_CMD_DISCARD);
    REQUIRE(editor.Says("Edits discarded."));
    editor.Choose(IDC_CMB_BASE_PLUGIN, 1);
    editor.Choose(IDC_CMB_BASE_PLUGIN + kCategory, 0);
    RemoveFile(digests);
    editor.Click(IDC_CMD_CHECK);
    editor.AnswerBox("Check",
                     "No faults found: the entries are complete, and 5 archives are present, with "
                     "the right CRC-32 and undamaged members.",
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

TEST_CASE(
    "Enter goes on to the next field; Apply keeps the keyboard there and shows the first entries") {
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
    editor.FocusOn(IDC_CMD_APPLY);
    editor.Press(VK_SPACE);
    PostMessageA(editor.Control(IDC_CMD_APPLY), WM_KEYUP, VK_SPACE, 1);
    REQUIRE(editor.Says("Saved."));
    CHECK(editor.HasFocus(IDC_TXT_BASE_PLUGIN + kAddress));
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN) == 0);
    CHECK(editor.Text(IDC_TXT_BASE_PLUGIN) == "Alpha");
    CHECK_FALSE(editor.IsEnabled(IDC_CMD_APPLY));
    program.catalogue.plugins[1].name = "Renamed";
    program.catalogue.plugins[1].url = "http://host/x";
    CHECK(SavedText(program) == TextOfCatalogue(program.catalogue));
}

TEST_CASE("buttons are enabled only while they would do something") {
    const ProgramFolder program;
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
    CHECK(WaitUntil([&] { return !editor.IsEnabled(kDownPlugin); }, 5000));
    CHECK(editor.HasFocus(kUpPlugin));
    CHECK(editor.IsEnabled(IDC_CMD_APPLY));
    editor.FocusOn(IDC_CMD_DISCARD);
    editor.Click(IDC_CMD_DISCARD);
    REQUIRE(editor.Says("Edits discarded."));
    CHECK_FALSE(editor.IsEnabled(IDC_CMD_APPLY));
    CHECK_FALSE(editor.IsEnabled(IDC_CMD_DISCARD));
}

TEST_CASE("a name without blanks makes no window wider than the screen") {
    ProgramFolder program;
    program.catalogue.plugins[0].name = std::string(250, 'W');
    program.catalogue.plugins[0].crc = "1";
    program.Save();
    const Editor editor(program);
    const LONG screen = GetSystemMetrics(SM_CXSCREEN);
    editor.Click(kRemovePlugin);
    const HWND box = editor.AwaitDialog("Confirmation");
    CHECK(ReplaceAll(WizardDriver::BoxText(box), "\r\n", "") ==
          "Are you sure you want to remove this entry ?'" + program.catalogue.plugins[0].name +
              "'");
    CHECK(Width(box) < screen);
    WizardDriver::Answer(box, IDNO);
    editor.Click(IDC_CMD_CHECK);
    const HWND check = editor.AwaitDialog("Check");
    CHECK(Width(check) < screen);
    WizardDriver::Answer(check, IDCANCEL);
}
