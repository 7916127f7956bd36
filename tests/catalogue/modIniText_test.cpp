#include "catalogue/modIniText.h"

#include "TestFolder.h"
#include "catalogue/modCatalogueFile.h"

#include <random>

using namespace vesk;
using namespace std::string_literals;
using vesk::test::TestFolder;

namespace {

/// Lines that a catalogue has, and lines that readers stumble over.
const std::vector<std::string> kOrdinary = {
    "[a]",        "[Bb]",    "k=v", "n=x y ",  "m=",    "o= 1", "; [c]", "",
    "p=\xE4\xDF", "q=a=b;c", "[d]", "r=t\"u'", "[e e]", "s=]",  "t=[x]"};
const std::vector<std::string> kOdd = {
    "[a] ",  "[A]",   " k=1",    "k =2",   "K=3",     "u=\"q\"",         "u='q",   "junk",
    "=v",    "[open", "x\ty=\t", "[]",     "v=\xA0",  "[f]]x",           "[ g ]",  ";=",
    " ; no", "a;b=1", "w=\"\"",  "[h]i=j", "x=\ry=z", "\xEF\xBB\xBF[i]", "z=a\0b"s};

std::string RandomText(std::mt19937& random, bool withOdd) {
    std::string text;
    const std::size_t lines = random() % 9;
    for (std::size_t i = 0; i < lines; ++i) {
        const bool odd = withOdd && random() % 4 == 0;
        const auto& from = odd ? kOdd : kOrdinary;
        text += from[random() % from.size()];
        if (random() % 6 == 0)
            text += std::string(random() % 300, 'z');
        text += i + 1 == lines && random() % 2 == 0 ? "" : random() % 3 == 0 ? "\n" : "\r\n";
    }
    return text;
}

} // namespace

TEST_CASE("what is read at once is what the system's own functions read, key by key") {
    const TestFolder folder;
    std::mt19937 random(20060504);
    int plain = 0;
    for (int round = 0; round < 600; ++round) {
        const std::string text = RandomText(random, round % 3 == 0);
        const std::string path = folder.Write("r" + std::to_string(round) + ".ini", text);
        const IniText ini = ParseIni(text);
        if (!ini.isPlain)
            continue;
        ++plain;
        CAPTURE(text);
        REQUIRE(ReadSectionsThroughSystem(path) == ini.sections);
    }
    CHECK(plain > 100); // else nothing was compared

    // Lists that are cut: only the names are asked for, and one of them is cut itself.
    std::string text = "[" + std::string(100, 's') + "]\r\n";
    for (int i = 0; i < 90; ++i)
        text += std::string(1500, 'k') + std::to_string(i) + "=v" + std::to_string(i) + "\r\n";
    text += "[b]\r\nk=v\r\n[" + std::string(200, 't') + "]\r\nk=w\r\n";
    const IniText cut = ParseIni(text);
    CHECK((cut.linesArePlain && !cut.isPlain));
    const std::string path = folder.Write("cut.ini", text);
    const auto sections = ReadSectionsThroughSystem(path, &cut);
    CHECK(sections != cut.sections);
    CHECK(sections == ReadSectionsThroughSystem(path));

    Catalogue catalogue;
    catalogue.installFolder = "a b";
    for (int i = 0; i < 40; ++i) {
        const std::string name = "T\xE4" + std::string(random() % 250, 'n') + ";[=]";
        catalogue.plugins.push_back({name, "a.zip", "1", random() % 2 == 0, false, "h/x, y", "0"});
    }
    catalogue.baseComponents = catalogue.plugins;
    SaveCatalogue(folder.Path() + "\\", catalogue);
    const IniText written = ParseIni(ReadWholeFile(folder / kCatalogueFileName));
    CHECK(written.isPlain); // what the editor writes needs no second reading
    CHECK(ReadSectionsThroughSystem(folder / kCatalogueFileName) == written.sections);
}
