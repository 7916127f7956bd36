#include "EditorDriver.h"

#include "ExpectedText.h"
#include "WizardSteps.h"
#include "base/modText.h"

using namespace vesk;
using namespace vesk::test;

TEST_CASE("unsaved edits are asked about, and survive a save that fails") {
    ProgramFolder program;
    const std::string question = "Save the edits to the catalogue before leaving ?";
    const std::string file = program.Path() + kCatalogueFileName;
    {
        const Editor editor(program);
        CHECK(SendMessageA(editor.Window(), WM_QUERYENDSESSION, 0, 0) != 0);
        editor.Type(IDC_TXT_BASE, L"Renamed");
        PostMessageA(editor.Window(), WM_QUERYENDSESSION, 0, 0);
        AWAIT(editor, !IsWindowEnabled(editor.Window()));
        CHECK(SendMessageA(editor.Window(), WM_QUERYENDSESSION, 0, 0) == 0);
        CHECK(editor.AnswerBox("Plugin Setup", IDCANCEL) == question);
        CHECK_FALSE(editor.HasEnded());
        PostMessageA(editor.Window(), WM_CLOSE, 0, 0);
        CHECK(editor.AnswerBox("Plugin Setup", IDNO) == question);
        CHECK(editor.AwaitEnd() == 0);
        editor.CheckSaved(program.catalogue);
    }
    const Editor editor(program);
    editor.Type(IDC_TXT_BASE, L"t\x012Bn"); // a letter that the code page lacks
    CHECK(editor.Items(IDC_CMB_BASE).front() == "t?n");
    RemoveFile(file);
    CreateFolder(file); // what a save cannot replace
    CHECK(editor.ClickAndAnswer(IDCANCEL, "Plugin Setup", IDYES) == question);
    const std::string told = editor.AnswerBox("Plugin Setup", IDOK);
    CheckStarts(told, "The catalogue could not be saved.\r\nCannot ");
    CheckHolds(told, kCatalogueFileName);
    CHECK_FALSE(editor.HasEnded());
    CHECK(editor.Text(IDC_TXT_BASE) == "t?n");
    CHECK(editor.Text(IDC_LBL_STATE) == "There are unsaved edits.");
    RemoveDirectoryA(file.c_str());
    CHECK(editor.ClickAndAnswer(IDCANCEL, "Plugin Setup", IDYES) == question);
    CHECK(editor.AwaitEnd() == 0);
    program.catalogue.baseComponents[0].name = "t?n";
    editor.CheckSaved(program.catalogue);
}

TEST_CASE(
    "browsing for an archive fills in its name and checksum, and can copy one from elsewhere") {
    const ProgramFolder program;
    const std::string crc = program.WriteArchive("here.zip", {TestMember::Stored("here.txt", "x")});
    const std::string outside =
        program.Folder().Write("elsewhere\\new.zip", MakeZip({TestMember::Stored("a.txt", "a")}));
    const Editor editor(program);
    const auto browse = [&](const std::string& path, int button) {
        editor.Click(kBrowseBase);
        const HWND dialog = editor.AwaitDialog("Browse for File");
        WizardDriver::TypeInto(dialog, path);
        editor.Answer(dialog, button);
    };
    const auto copy = [&](int answer) {
        browse(outside, IDOK);
        CheckHolds(editor.AnswerBox("Browse for File", answer), "is not in the program folder");
    };
    browse(program.Path() + "here.zip", IDCANCEL);
    copy(IDCANCEL);
    CHECK(editor.Text(IDC_TXT_BASE + kFileName) == "pebuilder3110a.zip");
    CHECK_FALSE(FileExists(program.Path() + "new.zip"));
    const std::string used = program.Folder().Write("elsewhere\\uninstall.exe", "x");
    for (const auto& [path, words] :
         {std::pair{program.Folder().Write("program\\empty.zip", ""), "has no checksum"},
          {used, "cannot be an archive"}}) {
        browse(path, IDOK);
        CheckHolds(editor.AnswerBox("Browse for File", IDOK), words);
    }
    browse("here.zip", IDOK); // it begins in the program folder
    AWAIT(editor, editor.Text(IDC_TXT_BASE + kFileName) == "here.zip");
    CHECK(editor.Text(IDC_TXT_BASE + kChecksum) == crc);
    CHECK_FALSE(FileExists(program.Path() + "veskbuilder.sha256"));
    const std::string digests = program.Folder().Write("program\\veskbuilder.sha256", "");
    copy(IDNO);
    AWAIT(editor, editor.Text(IDC_TXT_BASE + kFileName) == "new.zip");
    CHECK(editor.Text(IDC_TXT_BASE + kChecksum) == clsCRC().CalculateFile(outside));
    CHECK_FALSE(FileExists(program.Path() + "new.zip"));
    const ChangedKey noDialogOfVista(
        HKEY_CLASSES_ROOT, R"(CLSID\{DC1C5A9C-E88A-4DDE-A5A1-60F82A20AEF7}\InProcServer32)",
        "none");
    copy(IDYES); // as Windows XP does it
    AWAIT(editor, Holds(ReadWholeFile(digests), "new.zip"));
    CHECK(ReadWholeFile(program.Path() + "new.zip") == ReadWholeFile(outside));
}

TEST_CASE("a catalogue is begun from nothing, and not written before Apply") {
    const ProgramFolder program;
    const std::string file = program.Path() + kCatalogueFileName;
    RemoveFile(file);
    const Editor editor(program);
    editor.CheckShows("editor_new");
    CheckStarts(editor.ClickAndAnswer(IDC_CMD_CHECK, "Check", IDOK), "No faults found");
    CHECK_FALSE(FileExists(file));
    editor.Click(IDC_CMD_DISCARD);
    editor.AwaitState("Edits discarded.");
    CHECK(editor.Items(IDC_CMB_BASE) == Names{""});
    editor.Exit();
    CHECK_FALSE(FileExists(file));
}

TEST_CASE("what a reader of the file would cut off is told before anything is written") {
    const ProgramFolder program;
    const Editor editor(program);
    editor.Choose(IDC_CMB_BASE_PLUGIN, 1);
    editor.SetText(IDC_TXT_BASE_PLUGIN + kAddress, "http://host/" + std::string(243, 'x'));
    editor.Choose(IDC_CMB_BASE_PLUGIN, 0);
    CHECK(editor.ClickAndAnswer(IDC_CMD_APPLY, "Plugin Setup", IDOK) ==
          "The catalogue is not saved.\r\n\r\nPlug-in \"Beta\": its address has 255 "
          "characters of which only 254 are read.");
    AWAIT(editor, editor.Chosen(IDC_CMB_BASE_PLUGIN) == 1);
    editor.CheckSaved(program.catalogue);
    editor.SetText(IDC_TXT_BASE_PLUGIN + kAddress, "http://host/" + std::string(242, 'x'));
    editor.Apply();
}

TEST_CASE("nothing that others wrote, or that could not be read, is written over unasked") {
    ProgramFolder program;
    const std::string file = program.Path() + kCatalogueFileName;
    const std::string broken = ReplaceAll(ReadWholeFile(file), "[Categories]", "[Plugin]");
    const auto asks = [](const Editor& editor, const std::string& words, int answer) {
        CheckHolds(editor.ClickAndAnswer(IDC_CMD_APPLY, "Plugin Setup", answer), words);
    };
    {
        const Editor editor(program);
        editor.Type(IDC_TXT_FOLDER, L"Mine");
        WriteCompleteFile(file, broken);
        asks(editor, "changed by another program", IDNO);
        CHECK(ReadWholeFile(file) == broken);
        CHECK(editor.Text(IDC_LBL_STATE) == "There are unsaved edits.");
        asks(editor, "changed by another program", IDYES);
        editor.AwaitState("Saved.");
        program.catalogue.installFolder = "Mine";
        editor.CheckSaved(program.catalogue);
        editor.Type(IDC_TXT_FOLDER, L"Again"); // what it wrote itself is no change by others
        editor.Apply();
    }
    WriteCompleteFile(file, broken);
    const Editor editor(program);
    const std::string told = editor.AnswerBox("Plugin Setup", IDOK);
    CheckHolds(told, "two sections [Plugin]");
    CHECK_FALSE(Holds(told, "-setup")); // it is open
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN) == Names{"Alpha", "Beta", "Gamma"});
    asks(editor, "could be read", IDYES); // enabled without an edit: it mends the file
    editor.AwaitState("Saved.");
    CHECK_FALSE(editor.IsEnabled(IDC_CMD_APPLY));
}
