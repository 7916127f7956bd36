#include "EditorDriver.h"
#include "Growth.h"

#include "base/modText.h"
#include "base/modWide.h"

#include <cstdlib>

using namespace vesk;
using namespace vesk::test;

TEST_CASE("a plug-in is added, filled in, moved and saved, and a build takes it") {
    ProgramFolder program;
    program.catalogue.categories.push_back({"200_some_apps", "200", ""});
    program.Save();
    const std::string crc = program.WriteArchive(
        "delta.zip",
        {TestMember::Stored("delta.inf", "[PEBuilder]\r\nName=\"x\"\r\nEnable=1\r\n")});
    const Editor editor(program);
    editor.CheckShows("editor"); // nothing is written back while it is shown
    editor.Click(kAddPlugin);
    editor.AwaitOffer(IDC_CMB_BASE_PLUGIN, {"Alpha", "Beta", "Gamma", ""});
    editor.Type(IDC_TXT_BASE_PLUGIN, L"Delta");
    editor.Type(IDC_TXT_BASE_PLUGIN + kFileName, L"delta.zip");
    editor.Type(IDC_TXT_BASE_PLUGIN + kChecksum, Widen(crc));
    editor.Choose(IDC_CMB_BASE_PLUGIN + kEnabled, 0);
    editor.Choose(IDC_CMB_BASE_PLUGIN + kCategory, 1);
    editor.Click(kUpPlugin);
    editor.Click(kUpPlugin);
    editor.AwaitOffer(IDC_CMB_BASE_PLUGIN, {"Alpha", "Delta", "Beta", "Gamma"});
    editor.Click(kDownBase);
    editor.AwaitOffer(IDC_CMB_BASE, {"Extras", "PE Builder"});
    editor.Click(kUpBase);
    editor.AwaitOffer(IDC_CMB_BASE, {"PE Builder", "Extras"});
    editor.Choose(IDC_CMB_BASE, 1);
    editor.Choose(IDC_CMB_INSTALL_PATH, 1);
    editor.CheckSaved(program.catalogue);
    editor.Type(IDC_TXT_BASE + kAddress, L"http://host.invalid/extras.zip");
    CHECK(editor.Text(IDC_TXT_BASE + kFileName) == "extras.zip");
    editor.Apply(); // straight from the field
    CHECK(editor.Chosen(IDC_CMB_BASE) == 0);
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN) == 0);

    program.catalogue.installPathFlag = "1";
    program.catalogue.baseComponents[1].url = "http://host.invalid/extras.zip";
    program.catalogue.plugins.insert(program.catalogue.plugins.begin() + 1,
                                     {"Delta", "delta.zip", "200", true, false, "", crc});
    editor.CheckSaved(program.catalogue);
    editor.Exit();

    const std::string build = "\"" + program.Console() + "\" --install \"" + program.Tree() + "\"";
    CHECK(std::system(("\"" + build + "\"").c_str()) == 0);
    CHECK(FileExists(program.Tree() + "\\Plugin\\200_some_apps\\Delta\\delta.inf"));
}

TEST_CASE("entries are removed after a Yes, locked ones never, and Discard brings all back") {
    ProgramFolder program;
    program.catalogue.plugins[0].name = std::string(250, 'W'); // without blanks
    const Names all = {program.catalogue.plugins[0].name, "Beta", "Gamma"};
    program.Save();
    const Editor editor(program);
    const HWND selector = editor.Control(IDC_CMB_BASE_PLUGIN);
    CHECK(SendMessageA(selector, CB_GETDROPPEDWIDTH, 0, 0) > SizeOf(selector).cx);
    CHECK(editor.ClickAndAnswer(kRemoveBase, "Locked", IDOK) ==
          "Plugin is locked, unlock plugin\r\nto delete...");
    CHECK(editor.Items(IDC_CMB_BASE) == Names{"PE Builder", "Extras"});
    editor.Click(kRemovePlugin);
    const HWND box = editor.AwaitDialog("Confirmation");
    CHECK(ReplaceAll(TextIn(box, 0xFFFF), "\r\n", "") ==
          "Are you sure you want to remove this entry ?'" + all.front() + "'");
    CHECK(SizeOf(box).cx < GetSystemMetrics(SM_CXSCREEN));
    editor.Answer(box, IDNO);
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN) == all);
    CHECK(editor.Text(IDC_LBL_STATE).empty());
    editor.ClickAndAnswer(kRemovePlugin, "Confirmation", IDYES);
    editor.AwaitOffer(IDC_CMB_BASE_PLUGIN, {"Beta", "Gamma"});
    editor.SetText(IDC_TXT_BASE_PLUGIN, "nobody"); // as assistive tools can, disabled or not
    editor.CheckShows("editor_none_selected");

    for (const Names& rest : {Names{"Beta"}, Names{""}}) {
        editor.Choose(IDC_CMB_BASE_PLUGIN, static_cast<int>(rest.front() == "Beta"));
        editor.Choose(IDC_CMB_BASE_PLUGIN + kLocked, 1); // unlocked, it goes
        editor.ClickAndAnswer(kRemovePlugin, "Confirmation", IDYES);
        editor.AwaitOffer(IDC_CMB_BASE_PLUGIN, rest);
    }
    editor.Type(IDC_TXT_FOLDER, L"Other");
    editor.AwaitState("There are unsaved edits.");
    editor.FocusOn(IDC_CMD_DISCARD);
    editor.Click(IDC_CMD_DISCARD);
    editor.AwaitState("Edits discarded.");
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN) == all);
    CHECK(editor.Text(IDC_TXT_FOLDER) == "VeskUiTest");
    CHECK_FALSE(editor.IsEnabled(IDC_CMD_DISCARD));
    editor.Exit();
    editor.CheckSaved(program.catalogue);
}

TEST_CASE("the check goes through the edited catalogue and leads to the entry") {
    ProgramFolder program;
    for (const char* key : {"200", "300", "500"})
        program.catalogue.categories.push_back({std::string(key) + "_x", key, ""});
    program.catalogue.plugins[1].cat = "gone";
    program.Save();
    const std::string digests = program.Folder().Write("program\\veskbuilder.sha256", "none\n");
    const Editor editor(program);
    const int category = IDC_CMB_BASE_PLUGIN + kCategory;
    editor.Choose(IDC_CMB_BASE_PLUGIN, 1);
    CHECK(editor.Items(category).back() == "gone (no such category)");
    editor.Choose(category, 0);
    editor.Choose(category, 4); // back to what it was
    CHECK(editor.Text(IDC_LBL_STATE).empty());
    editor.Choose(IDC_CMB_BASE_PLUGIN, 0);
    editor.Type(IDC_TXT_BASE + kChecksum, L"0");
    editor.Click(IDC_CMD_CHECK);
    const HWND dialog = editor.AwaitDialog("Check");
    const HWND list = GetDlgItem(dialog, IDC_LST_PROBLEMS);
    editor.CheckShows(dialog, "check");
    CHECK(SendMessageA(list, LVM_GETCOLUMNWIDTH, 1, 0) > SizeOf(list).cx / 2);
    ClickIn(dialog, IDC_CMD_CHECK_COPY);
    editor.AwaitClipboard(TextIn(dialog, IDC_TXT_PROBLEM) + "\r\n");
    const LONG listWidth = SizeOf(list).cx;
    const auto columnsWidth = [&] {
        return SendMessageA(list, LVM_GETCOLUMNWIDTH, 0, 0) +
               SendMessageA(list, LVM_GETCOLUMNWIDTH, 1, 0);
    };
    CheckGrows(dialog,
               {{IDC_LST_PROBLEMS, {0, 0, 200, 100}},
                {IDC_TXT_PROBLEM, {0, 100, 200, 100}},
                {IDC_CMD_CHECK_COPY, {0, 100, 0, 100}},
                {IDC_CMD_GO_TO, {200, 100, 200, 100}},
                {IDCANCEL, {200, 100, 200, 100}}},
               [&] { CHECK(columnsWidth() > listWidth); });
    DoubleClickLine(list, 2); // which leads nowhere
    AWAIT(editor, !IsWindowEnabled(GetDlgItem(dialog, IDC_CMD_GO_TO)));
    PostMessageA(list, WM_KEYDOWN, VK_UP, 1);
    AWAIT(editor,
          TextIn(dialog, IDC_TXT_PROBLEM) == "plug-in \"Beta\": there is no category \"gone\"");
    editor.Answer(dialog, IDC_CMD_GO_TO);
    AWAIT(editor, editor.Text(IDC_TXT_BASE_PLUGIN) == "Beta");
    editor.Click(IDC_CMD_CHECK);
    DoubleClickLine(GetDlgItem(editor.AwaitDialog("Check"), IDC_LST_PROBLEMS), 0);
    AWAIT(editor, editor.Focus() == editor.Control(IDC_TXT_BASE));

    editor.Choose(category, 0);
    editor.Click(IDC_CMD_DISCARD);
    editor.AwaitState("Edits discarded.");
    editor.Choose(IDC_CMB_BASE_PLUGIN, 1);
    editor.Choose(category, 0);
    RemoveFile(digests);
    CHECK(editor.ClickAndAnswer(IDC_CMD_CHECK, "Check", IDOK) ==
          "No faults found: the entries are complete, and 5 archives are present, with "
          "the right CRC-32 and undamaged members.");
}

TEST_CASE("the keyboard goes on with Enter, stays where it is after Apply, and leaves buttons that "
          "have done their last move") {
    ProgramFolder program;
    const Editor editor(program);
    const LONG height = SizeOf(editor.Window()).cy;
    CheckGrows(editor.Window(),
               {{IDC_TXT_BASE, {0, 0, 200, 0}},
                {kRemoveBase, {200, 0, 200, 0}},
                {IDCANCEL, {200, 0, 200, 0}}},
               [&] { CHECK(SizeOf(editor.Window()).cy == height); }); // more would show nothing
    CHECK(editor.AwaitTip(editor.Control(kDownPlugin)) == "1 of 3");
    // The tip in sight is the uppermost window of its kind.
    CHECK(SendMessageA(FindWindowA(TOOLTIPS_CLASSA, nullptr), TTM_GETTOOLCOUNT, 0, 0) == 21);
    editor.Choose(IDC_CMB_BASE_PLUGIN, 1);
    editor.FocusOn(kDownPlugin);
    editor.Click(kDownPlugin);
    AWAIT(editor, !editor.IsEnabled(kDownPlugin) && editor.Focus() == editor.Control(kUpPlugin));
    editor.Click(kUpPlugin);
    editor.AwaitOffer(IDC_CMB_BASE_PLUGIN, {"Alpha", "Beta", "Gamma"});
    editor.Type(IDC_TXT_BASE_PLUGIN, L"Renamed");
    editor.FocusOn(IDC_TXT_BASE_PLUGIN);
    for (const int next : {IDC_TXT_BASE_PLUGIN + kFileName, int{kBrowsePlugin}}) {
        editor.Press(VK_RETURN);
        AWAIT(editor, editor.Focus() == editor.Control(next));
    }
    CHECK(editor.Text(IDC_LBL_STATE) == "There are unsaved edits.");
    editor.CheckSaved(program.catalogue);
    editor.FocusOn(IDC_TXT_BASE_PLUGIN + kAddress);
    editor.Type(IDC_TXT_BASE_PLUGIN + kAddress, L"http://host/x");
    editor.FocusOn(IDC_CMD_APPLY);
    editor.Press(VK_SPACE);
    PostMessageA(editor.Control(IDC_CMD_APPLY), WM_KEYUP, VK_SPACE, 1);
    editor.AwaitState("Saved.");
    CHECK(editor.Focus() == editor.Control(IDC_TXT_BASE_PLUGIN + kAddress));
    CHECK_FALSE(editor.IsEnabled(IDC_CMD_APPLY));
    program.catalogue.plugins[1].name = "Renamed";
    program.catalogue.plugins[1].url = "http://host/x";
    editor.CheckSaved(program.catalogue);
}
