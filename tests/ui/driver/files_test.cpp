#include "EditorDriver.h"

#include "base/modText.h"

#include <doctest/doctest.h>

using namespace vesk;
using namespace vesk::test;

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
    CHECK(WizardDriver::BoxText(box).starts_with("The catalogue could not be saved.\r\nCannot "));
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

TEST_CASE("a catalogue that breaks off is explained before anything can be lost") {
    const ProgramFolder program;
    const std::string file = program.Path() + kCatalogueFileName;
    const std::string text = ReadWholeFile(file);
    WriteCompleteFile(file, text.substr(0, text.find("[Categories]")));
    const Editor editor(program);
    const HWND box = editor.AwaitDialog("Plugin Setup");
    CHECK(WizardDriver::BoxText(box).find("it has 3 sections") != std::string::npos);
    CHECK(WizardDriver::BoxText(box).find("-setup") == std::string::npos); // it is open
    WizardDriver::Answer(box, IDOK);
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN) == Names{"Alpha", "Beta", "Gamma"});
}

TEST_CASE("a catalogue is begun from nothing, and not written before Apply") {
    const ProgramFolder program;
    const std::string file = program.Path() + kCatalogueFileName;
    RemoveFile(file);
    const Editor editor(program);
    CHECK(editor.Says("A new catalogue, not saved yet."));
    CHECK(editor.Text(IDC_TXT_BASE + kFileName) == "pebuilder3110a.zip");
    CHECK(editor.Text(IDC_TXT_BASE + kChecksum) == program.catalogue.baseComponents[0].crc);
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN + kCategory).size() ==
          5); // and the empty plug-in's none
    editor.Click(IDC_CMD_CHECK);
    CHECK(WizardDriver::BoxText(editor.AwaitDialog("Check")).starts_with("No faults found"));
    WizardDriver::Answer(editor.AwaitDialog("Check"), IDOK);
    CHECK_FALSE(FileExists(file));
    SUBCASE("dropped") {
        editor.Click(IDC_CMD_DISCARD);
        REQUIRE(editor.Says("Edits discarded."));
        CHECK(editor.Items(IDC_CMB_BASE) == Names{""});
        editor.Click(IDCANCEL);
        CHECK(editor.AwaitEnd() == 0);
        CHECK_FALSE(FileExists(file));
    }
    SUBCASE("applied") {
        editor.Click(IDC_CMD_APPLY);
        REQUIRE(editor.Says("Saved."));
        Catalogue catalogue;
        CHECK(LoadCatalogueReporting(program.Path(), catalogue).state == CatalogueState::Whole);
        CHECK(catalogue.categories.size() == 4);
        CHECK(catalogue.showCategories);
    }
}

TEST_CASE("what a reader of the file would cut off is told before anything is written") {
    const ProgramFolder program;
    const std::string before = SavedText(program);
    const Editor editor(program);
    editor.Choose(IDC_CMB_BASE_PLUGIN, 1);
    editor.SetText(IDC_TXT_BASE_PLUGIN + kAddress, "http://host/" + std::string(243, 'x'));
    editor.Choose(IDC_CMB_BASE_PLUGIN, 0);
    editor.Click(IDC_CMD_APPLY);
    editor.AnswerBox("Plugin Setup",
                     "The catalogue is not saved.\r\n\r\nPlug-in \"Beta\": its address has 255 "
                     "characters of which only 254 are read.",
                     IDOK);
    CHECK(WaitUntil([&] { return editor.Chosen(IDC_CMB_BASE_PLUGIN) == 1; }, 5000));
    CHECK(SavedText(program) == before);
    editor.SetText(IDC_TXT_BASE_PLUGIN + kAddress, "http://host/" + std::string(242, 'x'));
    editor.Click(IDC_CMD_APPLY);
    CHECK(editor.Says("Saved."));
}

TEST_CASE("a letter that the code page lacks is not saved as another one") {
    const ProgramFolder program;
    const Editor editor(program);
    const HWND name = editor.Control(IDC_TXT_BASE);
    SendMessageW(name, EM_SETSEL, 0, -1);
    for (const wchar_t c : std::wstring(L"t\x012Bn"))
        SendMessageW(name, WM_CHAR, c, 1);
    CHECK(editor.Text(IDC_TXT_BASE) == "t?n");
    CHECK(editor.Items(IDC_CMB_BASE).front() == "t?n");
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
