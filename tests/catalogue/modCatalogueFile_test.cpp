#include "catalogue/modCatalogueFile.h"

#include "ExpectedText.h"
#include "TestFolder.h"
#include "base/modFile.h"
#include "base/modWide.h"
#include "catalogue/clsEditedFile.h"
#include "catalogue/clsINI.h"
#include "catalogue/modCatalogueText.h"
#include "catalogue/modCategoryCaption.h"

#include <windows.h>

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

} // namespace

TEST_CASE_FIXTURE(
    Fixture, "sections and keys count by position, what was read before a fault stays; captions") {
    CheckAnswers("catalogues_by_position", [&](const std::string& ini) {
        const CatalogueLoad load = Load(ReplaceAll(ini, " / ", "\r\n"));
        std::string text = ReplaceAll(load.sentence, folder.Path(), "{FOLDER}") + "\n" +
                           loaded.pluginFolder + "\n" + CatalogueText(loaded, "now");
        for (const CategoryRecord& category : loaded.categories)
            text += category.caption + "\n";
        return ReplaceAll(text, "\r", "");
    });
}

TEST_CASE_FIXTURE(Fixture, "a catalogue that lost a line is never taken for a whole one") {
    SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_READONLY);
    SaveCatalogue(programPath, catalogue);
    Lines lines = Split(good, '\n');
    lines.pop_back();
    std::string many = good + "\x7F=x\r\n"; // half a minute's reading, key by key
    for (int i = 0; i < 9000; ++i)
        many += "k" + std::to_string(i) + "=x\r\n";
    for (const std::string& large : {many, good + ";\x7F" + std::string(kLongestText, 'x')}) {
        const CatalogueLoad load = Load(large);
        CHECK(load.state == CatalogueState::Partial);
        CheckHolds(load.fault, "too large to see whether");
        CHECK(loaded.plugins == catalogue.plugins);
        CHECK(loaded.categories.size() == (large == many ? 9003 : 2));
    }
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

TEST_CASE_FIXTURE(Fixture, "what is wrong with a changed catalogue, and lost by saving it anew") {
    std::string manySections, manyKeys;
    for (char c = 'a'; c < 'f'; ++c)
        manySections += "[" + std::string(60, c) + "] / ";
    for (int i = 0; i < 12000; ++i)
        manyKeys += "category" + std::to_string(i) + "=x / ";
    const std::pair<const char*, std::string> names[] = {
        {"{ALL}", good},      {"{LONG}", std::string(255, 'x')}, {"{SECTIONS}", manySections},
        {"{KEYS}", manyKeys}, {"{NUL}", std::string(1, '\0')},   {" / ", "\r\n"}};
    CheckAnswers("catalogue_faults", [&](std::string change) {
        for (const auto& [name, text] : names)
            change = ReplaceAll(change, name, text);
        const std::size_t arrow = change.find(" => ");
        folder.Write("veskbuilder.ini",
                     ReplaceAll(good, change.substr(0, arrow), change.substr(arrow + 4)));
        clsEditedFile read(programPath);
        const CatalogueLoad load = read.Load(loaded);
        const std::string loss = read.LossBySaving();
        CHECK(load.isThere);
        read.Save(catalogue);
        CHECK(read.LossBySaving().empty());
        folder.Write("veskbuilder.ini", "x");
        CHECK(Holds(read.LossBySaving(), "changed by another program"));
        return "state " + std::to_string(static_cast<int>(load.state)) + "\n" +
               ReplaceAll(load.sentence, folder.Path(), "{FOLDER}") + "\n" + loss + "\n";
    });
    RemoveFile(file);
    loaded.installFolder = "kept";
    CHECK_FALSE(LoadCatalogueReporting(programPath, loaded).isThere);
    CHECK(loaded.installFolder == "kept");
    CreateFolder(file);
    CHECK(Holds(LoadCatalogueReporting(programPath, loaded).sentence, "it is a folder"));
}

TEST_CASE_FIXTURE(Fixture, "a catalogue in another encoding is read as the system reads it") {
    std::string bytes = "\xFF\xFE";
    for (const wchar_t c : Widen(good))
        bytes += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
    CHECK(Load(bytes).state == CatalogueState::Whole);
    CHECK(loaded.plugins == catalogue.plugins);
    CHECK(Load("\xEF\xBB\xBF" + ReplaceAll(good, "\xE4", "a")).state == CatalogueState::Whole);
}

TEST_CASE("captions and sections with characters of two bytes" * doctest::skip(GetACP() != 932)) {
    // The second byte of the first looks like "_", that of the next like the key.
    CHECK(CategoryCaption("\x83_ G_\x83G_\x82\x81", "G") == "\x83_   \x83G \x82\x60");
    UseSystemCodePage();
    CHECK(ParseIni("[a\x81]]").sections.at(0).name == "a\x81]");
    CHECK(SectionNames("[a\x81]]") == Lines{"a\x81]"});
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
