#include "catalogue/modCatalogueFile.h"

#include "TestFolder.h"
#include "base/UniqueHandle.h"
#include "base/modText.h"
#include "catalogue/clsEditedFile.h"
#include "catalogue/clsINI.h"
#include "catalogue/modCategoryCaption.h"

#include <algorithm>

using namespace vesk;
using vesk::test::TestFolder;

namespace {

struct Loaded {
    Catalogue catalogue;
    std::string problem;
};

Loaded Load(const std::string& text) {
    const TestFolder folder;
    folder.Write("veskbuilder.ini", text);
    Loaded loaded;
    loaded.problem = LoadCatalogueReporting(folder.Path() + "\\", loaded.catalogue).sentence;
    return loaded;
}

constexpr const char* kInstall = "[A]\r\nx=VeskLive\r\ny=1\r\n";
constexpr const char* kEntry = "n=First \r\nz=f.zip \r\ne=1\r\nl=0\r\nu= \r\nc=1F \r\n";
constexpr const char* kPlugins = "[C]\r\nn=P\r\nz=p.cab\r\nk=100\r\ne=0\r\nl=1\r\nu=\r\nc=\r\n";
constexpr const char* kCategories = "[D]\r\ns=0\r\n100=100_system_tools\r\n";

} // namespace

TEST_CASE("a saved catalogue reads back the same") {
    const TestFolder folder;
    Catalogue saved;
    saved.installFolder = "VeskLive";
    saved.installPathFlag = "0";
    saved.baseComponents = {{"Base", "b.zip", "", true, true, "", "12ABCD"}};
    saved.plugins = {{"T\xE4n", "2.zip", "100", true, false, "http://h/2.zip", "7"}};
    saved.showCategories = true;
    saved.categories = {{"100_tools", "100", "Tools"}};
    const std::string programPath = folder.Path() + "\\";
    const std::string old = folder.Write("veskbuilder.ini", "old");
    SetFileAttributesA(old.c_str(), FILE_ATTRIBUTE_READONLY);
    SaveCatalogue(programPath, saved);

    Catalogue loaded;
    CHECK(LoadCatalogueReporting(programPath, loaded).sentence.empty());
    CHECK(loaded.installFolder == "VeskLive");
    CHECK(loaded.baseComponents == saved.baseComponents);
    CHECK(loaded.plugins == saved.plugins);
    CHECK(loaded.categories == saved.categories);
    CHECK(loaded.showCategories);
    CHECK(loaded.pluginFolder == "C:\\VeskLive\\Plugin");
}

TEST_CASE("sections and keys count by position, whatever their names") {
    const auto [catalogue, problem] =
        Load(kInstall + std::string("[B]\r\n") + kEntry + kPlugins + kCategories);
    CHECK(problem.empty());
    CHECK(catalogue.installRoot == "C:\\Program Files");
    using Entries = std::vector<CatalogueEntry>;
    CHECK(catalogue.baseComponents == Entries{{"First", "f.zip", "", true, false, "", "1F"}});
    CHECK(catalogue.plugins == Entries{{"P", "p.cab", "100", false, true, "", ""}});
    CHECK_FALSE(catalogue.showCategories);
    CHECK(catalogue.categories ==
          std::vector<CategoryRecord>{{"100_system_tools", "100", "System Tools"}});
}

TEST_CASE("what cannot be read ends the reading with a sentence; what came before stays") {
    // A missing key shifts the rest: an address is where a truth value should be.
    auto [shifted, problem] = Load(kInstall + std::string("[B]\r\n") + kEntry +
                                   "n2=S\r\ne2=1\r\nl2=0\r\n" + kPlugins + kCategories);
    CHECK(problem.find("section [B]") != std::string::npos);
    CHECK(shifted.baseComponents.size() == 2);
    CHECK(shifted.baseComponents[0].crc == "1F");
    CHECK(shifted.plugins.empty());

    CHECK(Load(kInstall + std::string("[B]\r\nn=x\r\nz=y\r\ne=maybe\r\n[C]\r\n") + kCategories)
              .problem.find("key e: \"maybe\" is neither 1 nor 0") != std::string::npos);
    CHECK(Load(kInstall).problem.find("1 section ") != std::string::npos);
}

TEST_CASE("a missing file leaves the catalogue as it was") {
    const TestFolder folder;
    Catalogue catalogue;
    catalogue.installFolder = "kept";
    LoadCatalogue(folder.Path() + "\\", catalogue);
    CHECK(catalogue.installFolder == "kept");
    CHECK(LoadCatalogueReporting(folder.Path() + "\\", catalogue).sentence.find("no such file") !=
          std::string::npos);
}

namespace {

/// A catalogue as the editor writes it, with everything in it that a reader can lose.
Catalogue GoodCatalogue() {
    Catalogue catalogue;
    catalogue.installFolder = "VeskLive";
    catalogue.installPathFlag = "0";
    catalogue.baseComponents = {{"Base", "b.zip", "", true, true, "http://h/b.zip", "12ABCD"},
                                {"More", "m.zip", "", true, false, "", "1"}};
    catalogue.plugins = {{"One", "1.zip", "100", true, false, "http://h/1.zip", "7"},
                         {"Two", "2.cab", "200", false, false, "", "8"}};
    catalogue.categories = {{"100_tools", "100", "Tools"}, {"200_more", "200", "More"}};
    return catalogue;
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t from = 0; from < text.size();) {
        const std::size_t end = text.find("\r\n", from);
        lines.push_back(text.substr(from, end - from));
        from = end + 2;
    }
    return lines;
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

CatalogueLoad LoadText(const TestFolder& folder, const std::string& text, Catalogue& catalogue) {
    folder.Write("veskbuilder.ini", text);
    return LoadCatalogueReporting(folder.Path() + "\\", catalogue);
}

} // namespace

TEST_CASE("a catalogue that lost a line is never taken for a whole one") {
    const TestFolder folder;
    SaveCatalogue(folder.Path() + "\\", GoodCatalogue());
    const std::vector<std::string> lines = LinesOf(ReadWholeFile(folder / "veskbuilder.ini"));
    Catalogue whole;
    REQUIRE(LoadText(folder, Joined(lines), whole).state == CatalogueState::Whole);
    int lost = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        CAPTURE(lines[i]);
        std::vector<std::string> rest = lines;
        rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(i));
        Catalogue catalogue;
        const CatalogueLoad load = LoadText(folder, Joined(rest), catalogue);
        const bool isCategory = lines[i].starts_with("100=") || lines[i].starts_with("200=");
        const bool isComment = lines[i].empty() || lines[i].starts_with(';');
        CHECK(load.state ==
              (isCategory || isComment ? CatalogueState::Whole : CatalogueState::Partial));
        CHECK(load.sentence.empty() == (load.state == CatalogueState::Whole));
        lost += load.state == CatalogueState::Partial ? 1 : 0;
        // The same line without its sign, and a file that ends within it.
        if (const std::size_t equals = lines[i].find('='); equals != std::string::npos) {
            rest = lines;
            rest[i].erase(equals, 1);
            CHECK(LoadText(folder, Joined(rest), catalogue).state == CatalogueState::Partial);
            rest.resize(i + 1);
            if (i + 2 < lines.size())
                CHECK(LoadText(folder, Joined(rest), catalogue).state == CatalogueState::Partial);
        }
    }
    CHECK(lost == 33);
}

TEST_CASE("a catalogue with one line changed for the worse says which") {
    struct Row {
        const char* line;
        std::string changed;
        const char* words;
    };
    const std::string longText(255, 'x');
    std::string manySections;
    for (char c = 'a'; c < 'f'; ++c)
        manySections += "[" + std::string(60, c) + "]\r\n";
    const TestFolder folder;
    SaveCatalogue(folder.Path() + "\\", GoodCatalogue());
    const std::vector<std::string> lines = LinesOf(ReadWholeFile(folder / "veskbuilder.ini"));
    for (const Row& row : {
             Row{"Enabled0=1", "Enabled0=maybe", "key Enabled0: \"maybe\" is neither 1 nor 0"},
             Row{"Lock1=0", "Lock1=", "key Lock1: \"\" is neither 1 nor 0"},
             Row{"ShowCategories=0", "ShowCategories=x", "\"x\" is neither 1 nor 0"},
             Row{"Name0=Base ", "Name0=" + longText, "of the value's 255 characters only 254"},
             Row{"[Plugin]", "[Base]", "two sections [Base]"},
             Row{"[Plugin]", "[Base]x", "two sections [Base]"},
             Row{"[Plugin]", "Plugin", "is not a key"},
             Row{"[Plugin]", "[Plugin", "has no \"]\""},
             Row{"Zip1=m.zip ", "Zip0=m.zip ", "key Zip0 twice"},
             Row{"Zip1=m.zip ", "Zip3=m.zip ", "key Zip3: it is where Zip1 is expected"},
             Row{"200=200_more", "100=200_more", "key 100 twice"},
             Row{"Folder=VeskLive", "Path2=x\r\nFolder=VeskLive", "where Path is expected"},
             Row{"200=200_more", "200=200_more\r\n" + manySections, "the list of sections has"},
         }) {
        CAPTURE(row.changed);
        std::vector<std::string> changed = lines;
        const auto found = std::ranges::find(changed, row.line);
        REQUIRE(found != changed.end());
        *found = row.changed;
        Catalogue catalogue;
        const CatalogueLoad load = LoadText(folder, Joined(changed), catalogue);
        CHECK(load.state == CatalogueState::Partial);
        CAPTURE(load.sentence);
        CHECK(load.sentence.find(row.words) != std::string::npos);
        CHECK(load.sentence.starts_with(folder / "veskbuilder.ini: "));
        CHECK(load.sentence.find("-setup") != std::string::npos);
    }
    std::string many = Joined(lines);
    for (int i = 0; i < 12000; ++i)
        many += "category" + std::to_string(i) + "=x\r\n";
    Catalogue catalogue;
    CHECK(LoadText(folder, many, catalogue).sentence.find("list of keys of section [Categories]") !=
          std::string::npos);
}

TEST_CASE("what stands beside a catalogue is no fault, and is not lost without a question") {
    const TestFolder folder;
    const std::string programPath = folder.Path() + "\\";
    Catalogue catalogue = GoodCatalogue();
    SaveCatalogue(programPath, catalogue);
    const std::string good = ReadWholeFile(folder / "veskbuilder.ini");
    const std::string skin = ReplaceAll(good, "Path=0", "Path=0\r\nSkin=blue");
    for (const auto& [text, words] : std::initializer_list<std::pair<std::string, std::string>>{
             {good, ""},
             {skin, "key Skin of section [Install]"},
             {good + "[Notes]\r\nx=1\r\n", "section [Notes]"}}) {
        folder.Write("veskbuilder.ini", text);
        clsEditedFile file(programPath);
        CHECK(file.Load(catalogue).state == CatalogueState::Whole);
        CAPTURE(file.LossBySaving());
        CHECK(file.LossBySaving().empty() == words.empty());
        CHECK(file.LossBySaving().find(words) != std::string::npos);
        file.Save(catalogue);
        CHECK(file.LossBySaving().empty());
    }
}

TEST_CASE("a catalogue that cannot be read at all says why and what to do") {
    const TestFolder folder;
    const std::string programPath = folder.Path() + "\\";
    const std::string file = programPath + "veskbuilder.ini";
    const auto load = [&] {
        Catalogue catalogue;
        const CatalogueLoad result = LoadCatalogueReporting(programPath, catalogue);
        CHECK(result.state == CatalogueState::Absent);
        CHECK(result.sentence.starts_with(file + ": "));
        return result;
    };
    CHECK(load().sentence ==
          file + ": there is no such file. Start veskbuilder.exe -setup to make one.");
    CHECK_FALSE(load().isThere);
    folder.Write("veskbuilder.ini", "");
    CHECK(load().sentence.find("empty") != std::string::npos);
    CHECK(load().isThere);
    folder.Write("veskbuilder.ini", "; nothing but this\r\n\r\n");
    CHECK(load().sentence.find("empty") != std::string::npos);
    folder.Write("veskbuilder.ini", "[Install]\r\n");
    {
        // Another program that lets nobody in: the system's own words, as for a denied access.
        const FileHandle held(
            CreateFileA(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        REQUIRE(held);
        CHECK(load().sentence.find("it cannot be read, ") != std::string::npos);
        CHECK(load().isThere);
    }
    RemoveFile(file);
    CreateFolder(file);
    CHECK(load().sentence.find("it is a folder") != std::string::npos);
}

TEST_CASE("a catalogue in another encoding is read as the system reads it") {
    const TestFolder folder;
    SaveCatalogue(folder.Path() + "\\", GoodCatalogue());
    const std::wstring wide = Widen(ReadWholeFile(folder / "veskbuilder.ini"));
    std::string bytes = "\xFF\xFE";
    for (const wchar_t c : wide)
        bytes += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
    Catalogue catalogue;
    CHECK(LoadText(folder, bytes, catalogue).state == CatalogueState::Whole);
    CHECK(catalogue.plugins == GoodCatalogue().plugins);
    // A value that ends for the system where it does not in the file.
    std::string text = Narrowed(wide);
    text.replace(text.find("b.zip"), 5, std::string("b\0zip", 5));
    const CatalogueLoad cut = LoadText(folder, text, catalogue);
    CHECK(cut.state == CatalogueState::Partial);
    CHECK(cut.sentence.find("reads it differently") != std::string::npos);
}

TEST_CASE("section names beyond the list's 254 characters are cut off") {
    const TestFolder folder;
    std::string text;
    for (char c = 'a'; c < 'a' + 5; ++c)
        text += "[" + std::string(60, c) + "]\r\nk=v\r\n";
    const clsINI ini(folder.Write("long.ini", text));
    const std::vector<std::string> sections = ini.GetAllSections();
    REQUIRE(sections.size() == 6);
    CHECK(sections[4].size() < 60);
    CHECK(sections[5].empty());
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

TEST_CASE("values: cut at 254 characters, deleted without a value, kept when empty") {
    const TestFolder folder;
    const clsINI ini(folder / "v.ini");
    ini.SetValue("s", "long", std::string(400, 'x'));
    CHECK(ini.GetStringValue("s", "long") == std::string(254, 'x'));
    ini.SetValue("s", "empty", "");
    ini.SetValue("s", "blank", " ");
    ini.SetValue("s", "long", std::nullopt);
    CHECK(ini.GetAllKeys("s") == std::vector<std::string>{"empty", "blank", ""});
    CHECK(ini.GetAllKeys("none") == std::vector<std::string>{""});
    ini.SetValue("s", "n", "12abc");
    CHECK(ini.GetIntValue("s", "n") == 12);
    CHECK(ini.GetIntValue("s", "blank") == 0);
}
