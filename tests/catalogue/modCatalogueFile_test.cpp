#include "catalogue/modCatalogueFile.h"

#include "TestFolder.h"
#include "base/Failure.h"
#include "catalogue/clsINI.h"

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
    // A missing key shifts the rest: an address stands where a truth value should.
    auto [shifted, problem] =
        Load(kInstall + std::string("[B]\r\n") + kEntry + "n2=S\r\ne2=1\r\nl2=0\r\n" + kPlugins);
    CHECK(problem.find("section [B]") != std::string::npos);
    CHECK(shifted.baseComponents.size() == 2);
    CHECK(shifted.baseComponents[0].crc == "1F");
    CHECK(shifted.plugins.empty());

    CHECK(Load(kInstall + std::string("[B]\r\nn=x\r\nz=y\r\ne=maybe\r\n"))
              .problem.find("key e: \"maybe\" is neither 1 nor 0") != std::string::npos);
    CHECK(Load(kInstall).problem.find("1 sections") != std::string::npos);
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
