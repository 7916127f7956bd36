#include "catalogue/modCatalogueFile.h"

#include "ExpectedText.h"
#include "TestFolder.h"
#include "base/UniqueHandle.h"
#include "base/modWide.h"
#include "catalogue/clsEditedFile.h"
#include "catalogue/clsINI.h"
#include "catalogue/modCatalogueText.h"
#include "catalogue/modCategoryCaption.h"

#include <algorithm>

using namespace vesk;
using namespace vesk::test;

namespace {

using Lines = std::vector<std::string>;

/// A folder with a catalogue file as the editor writes it, with everything in it that a reader can
/// lose. Each text is read by the program's own functions.
struct Fixture {
    Fixture() {
        catalogue.installFolder = "VeskLive";
        catalogue.installPathFlag = "0";
        catalogue.baseComponents = {{"Base", "b.zip", "", true, true, "http://h/b.zip", "12ABCD"},
                                    {"More", "m.zip", "", true, false, "", "1"}};
        catalogue.plugins = {{"T\xE4n", "1.zip", "100", true, false, "http://h/1.zip", "7"},
                             {"Two", "2.cab", "200", false, false, "", "8"}};
        catalogue.categories = {{"100_tools", "100", "Tools"}, {"200_more", "200", "More"}};
        SaveCatalogue(programPath, catalogue);
        good = ReadWholeFile(file);
    }
    CatalogueLoad Load(const std::string& text) {
        folder.Write("veskbuilder.ini", text);
        loaded = Catalogue();
        return LoadCatalogueReporting(programPath, loaded);
    }

    TestFolder folder;
    std::string programPath = folder.Path() + "\\";
    std::string file = programPath + "veskbuilder.ini";
    Catalogue catalogue, loaded;
    std::string good;
};

bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST_CASE_FIXTURE(Fixture,
                  "sections and keys count by position; what was read before a fault stays") {
    const std::string install = "[A]\r\nx=VeskLive\r\ny=1\r\n";
    const std::string base = "[B]\r\nn=First \r\nz=f.zip \r\ne=1\r\nl=0\r\nu= \r\nc=1F \r\n";
    const std::string plugins = "[C]\r\nn=P\r\nz=p.cab\r\nk=100\r\ne=0\r\nl=1\r\nu=\r\nc=\r\n";
    const std::string rest = plugins + "[D]\r\ns=0\r\n100=100_system_tools\r\n";
    const std::string key = "n2=S\r\ne2=1\r\nl2=0\r\n"; // an address stands for a truth value
    std::string text;
    for (const std::string& read :
         {install + base + rest, install + base + key + rest, install, install + base,
          install + base + plugins, ReplaceAll(install + base + rest, "e=1", "e=maybe"),
          ReplaceAll(good, "ies=0", "ies=-1")}) {
        const CatalogueLoad load = Load(read);
        text += "= " + ReplaceAll(load.sentence, folder.Path(), "{FOLDER}") + "\n" +
                loaded.pluginFolder + "\n" + CatalogueText(loaded, "now");
        for (const CategoryRecord& category : loaded.categories)
            text += category.caption + "\n";
    }
    CheckExpected("catalogues_by_position", ReplaceAll(text, "\r", ""));
}

TEST_CASE_FIXTURE(Fixture, "a catalogue that lost a line is never taken for a whole one") {
    SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_READONLY);
    SaveCatalogue(programPath, catalogue);
    Lines lines = Split(good, '\n');
    lines.pop_back();
    REQUIRE(Load(good).state == CatalogueState::Whole);
    CHECK(loaded.baseComponents == catalogue.baseComponents);
    CHECK(loaded.plugins == catalogue.plugins);
    CHECK(loaded.categories == catalogue.categories);
    const auto without = [&](std::size_t from, std::size_t to) {
        std::string text;
        for (std::size_t i = 0; i < lines.size(); ++i)
            text += i < from || i >= to ? lines[i] + "\n" : "";
        return text;
    };
    int lost = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        CAPTURE(lines[i]);
        const CatalogueLoad load = Load(without(i, i + 1));
        const bool isPartial = load.state == CatalogueState::Partial;
        CHECK(load.sentence.empty() == !isPartial);
        lost += isPartial ? 1 : 0;
        // The same line without its sign, and a file that ends there.
        if (!Holds(lines[i], "="))
            continue;
        CHECK(Load(ReplaceAll(good, lines[i], ReplaceAll(lines[i], "=", ""))).state ==
              CatalogueState::Partial);
        CHECK(Load(without(i, lines.size()) + ReplaceAll(lines[i], "=", "")).state ==
              CatalogueState::Partial);
    }
    CHECK(lost == 33); // all but the comments and the two categories
}

TEST_CASE_FIXTURE(Fixture, "a catalogue with one line changed for the worse says which") {
    std::string manySections, manyKeys;
    for (char c = 'a'; c < 'f'; ++c)
        manySections += "[" + std::string(60, c) + "]\r\n";
    for (int i = 0; i < 12000; ++i)
        manyKeys += "category" + std::to_string(i) + "=x\r\n";
    const std::string last = "200=200_more\r\n";
    struct Row {
        std::string line, changed, words;
    };
    for (const Row& row : {
             Row{"Enabled0=1", "Enabled0=maybe", "key Enabled0: \"maybe\" is neither 1 nor 0"},
             Row{"Lock1=0", "Lock1=", "key Lock1: \"\" is neither 1 nor 0"},
             Row{"ShowCategories=0", "ShowCategories=x", "\"x\" is neither 1 nor 0"},
             Row{"=Base ", "=" + std::string(255, 'x'), "of the value's 255 characters only 254"},
             Row{"[Plugin]", "[Base]", "two sections [Base]"},
             Row{"[Plugin]", "[Base]x", "two sections [Base]"},
             Row{"[Plugin]", "Plugin", "is not a key"},
             Row{"[Plugin]", "[Plugin", "has no \"]\""},
             Row{"Zip1=m.zip ", "Zip0=m.zip ", "key Zip0 twice"},
             Row{"Zip1=m.zip ", "Zip3=m.zip ", "key Zip3: it is where Zip1 is expected"},
             Row{last, "100=200_more\r\n", "key 100 twice"},
             Row{"Folder=VeskLive", "Path2=x\r\nFolder=VeskLive", "where Path is expected"},
             Row{last, last + manySections, "the list of sections has"},
             Row{last, last + manyKeys, "list of keys of section [Categories]"},
         }) {
        CAPTURE(row.words);
        const CatalogueLoad load = Load(ReplaceAll(good, row.line, row.changed));
        CHECK(load.state == CatalogueState::Partial);
        CAPTURE(load.sentence);
        CHECK(Holds(load.sentence, row.words));
        CHECK(load.sentence.starts_with(file + ": "));
        CHECK(Holds(load.sentence, "-setup"));
    }
}

TEST_CASE_FIXTURE(Fixture, "what stands beside a catalogue is no fault, and is not lost unasked") {
    struct Row {
        std::string text, lost;
        CatalogueState state;
    };
    for (const Row& row :
         {Row{good, "", CatalogueState::Whole},
          Row{ReplaceAll(good, "Path=0", "Path=0\r\nSkin=blue"), "key Skin of section [Install]",
              CatalogueState::Whole},
          Row{good + "[Notes]\r\nx=1\r\n", "section [Notes]", CatalogueState::Whole},
          Row{good + "[Base]\r\nx=1\r\n", "could be read", CatalogueState::Partial},
          Row{"; nothing but this\r\n", "could be read", CatalogueState::Absent},
          Row{"", "", CatalogueState::Absent}}) {
        CAPTURE(row.text);
        folder.Write("veskbuilder.ini", row.text);
        clsEditedFile read(programPath);
        CHECK(read.Load(loaded).state == row.state);
        CAPTURE(read.LossBySaving());
        CHECK(read.LossBySaving().empty() == row.lost.empty());
        CHECK(Holds(read.LossBySaving(), row.lost));
        read.Save(catalogue);
        CHECK(read.LossBySaving().empty());
        folder.Write("veskbuilder.ini", "x");
        CHECK(Holds(read.LossBySaving(), "changed by another program"));
    }
}

TEST_CASE_FIXTURE(Fixture, "a catalogue that cannot be read at all says why and what to do") {
    const auto refused = [&](const std::string& words, bool isThere) {
        const CatalogueLoad load = LoadCatalogueReporting(programPath, loaded);
        CHECK(load.state == CatalogueState::Absent);
        CHECK(load.sentence.starts_with(file + ": " + words));
        CHECK(load.isThere == isThere);
    };
    loaded.installFolder = "kept";
    RemoveFile(file);
    refused("there is no such file. Start veskbuilder.exe -setup to make one.", false);
    LoadCatalogue(programPath, loaded);
    CHECK(loaded.installFolder == "kept");
    for (const char* text : {"", "; nothing but this\r\n\r\n"}) {
        folder.Write("veskbuilder.ini", text);
        refused("it is empty", true);
    }
    {
        // Another program that lets nobody in: the system's own words, as for a denied access.
        const FileHandle held(
            CreateFileA(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        REQUIRE(held);
        refused("it cannot be read, ", true);
    }
    RemoveFile(file);
    CreateFolder(file);
    refused("it is a folder", true);
}

TEST_CASE_FIXTURE(Fixture, "a catalogue in another encoding is read as the system reads it") {
    std::string bytes = "\xFF\xFE";
    for (const wchar_t c : Widen(good))
        bytes += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
    CHECK(Load(bytes).state == CatalogueState::Whole);
    CHECK(loaded.plugins == catalogue.plugins);
    // A value that ends for the system where it does not in the file.
    const CatalogueLoad cut = Load(ReplaceAll(good, "b.zip", std::string("b\0zip", 5)));
    CHECK(cut.state == CatalogueState::Partial);
    CHECK(Holds(cut.sentence, "reads it differently"));
}

TEST_CASE("captions of categories") {
    struct Row {
        const char *value, *key, *caption;
    };
    for (const Row& row :
         {Row{"100_system_tools", "100", "System Tools"}, Row{"net_WORK", "net", "Work"},
          Row{"Net_tools", "net", "Net Tools"}, Row{"a-b_c", "", "A-b C"},
          Row{"\xE4rger_\xD6l", "9", "\xC4rger \xD6l"}, Row{"100", "100", ""}}) {
        CAPTURE(row.value);
        CHECK(CategoryCaption(row.value, row.key) == row.caption);
    }
}

TEST_CASE(
    "values are cut at 254 characters, deleted without a value, kept when empty; so are names") {
    const TestFolder folder;
    std::string text;
    for (char c = 'a'; c < 'a' + 5; ++c)
        text += "[" + std::string(60, c) + "]\r\nk=v\r\n";
    const clsINI ini(folder.Write("long.ini", text));
    const Lines sections = ini.GetAllSections();
    REQUIRE(sections.size() == 6);
    CHECK(sections[4].size() < 60);
    CHECK(sections[5].empty());
    ini.SetValue("s", "long", std::string(400, 'x'));
    CHECK(ini.GetStringValue("s", "long") == std::string(254, 'x'));
    ini.SetValue("s", "empty", "");
    ini.SetValue("s", "blank", " ");
    ini.SetValue("s", "long", std::nullopt);
    CHECK(ini.GetAllKeys("s") == Lines{"empty", "blank", ""});
    CHECK(ini.GetAllKeys("none") == Lines{""});
    ini.SetValue("s", "n", "12abc");
    CHECK(ini.GetIntValue("s", "n") == 12);
    CHECK(ini.GetIntValue("s", "blank") == 0);
}
