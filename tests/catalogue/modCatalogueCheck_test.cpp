#include "catalogue/modCatalogueCheck.h"

#include <doctest/doctest.h>

using namespace vesk;
using Kind = CatalogueProblemKind;

namespace {

CatalogueEntry GoodEntry(const std::string& name, const std::string& zip) {
    CatalogueEntry entry;
    entry.name = name;
    entry.zip = zip;
    entry.crc = "12ABCD";
    return entry;
}

Catalogue Good() {
    Catalogue catalogue;
    catalogue.installFolder = "tree";
    catalogue.baseComponents = {GoodEntry("Base", "pebuilder3110a.zip")};
    catalogue.plugins = {GoodEntry("Plug", "plug.CAB")};
    catalogue.plugins[0].cat = "200";
    for (const char* key : {"100", "200", "300", "500"})
        catalogue.categories.push_back({std::string(key) + "_x", key, "caption"});
    return catalogue;
}

using Kinds = std::vector<Kind>;

Kinds KindsOf(const CatalogueCheck& check) {
    Kinds kinds;
    for (const CatalogueProblem& problem : check.problems) {
        kinds.push_back(problem.kind);
    }
    return kinds;
}

} // namespace

TEST_CASE("a good catalogue has no problems, and the verdict says what it vouches for") {
    const auto factsOf = [](const std::string& archive) {
        return archive == "plug.CAB" ? ArchiveFacts() : ArchiveFacts{true, true, "12ABCD"};
    };
    Catalogue catalogue = Good();
    catalogue.plugins[0].url = "http://host/plug.CAB";
    const CatalogueCheck check =
        CheckCatalogue(catalogue, {factsOf, {}}, {"Install", "Base", "Plugin", "Categories"});
    CHECK(check.problems.empty());
    CHECK(check.archivesGood == 1);
    CHECK(check.Verdict().ends_with("Not checked: the 1 archive that a build downloads."));
    // What an emptied list keeps is no entry.
    catalogue.plugins = {CatalogueEntry()};
    CHECK(CheckCatalogue(catalogue, {factsOf, {}}).problems.empty());
}

TEST_CASE("fields of an entry") {
    const std::string longest(254, 'x');
    struct Row {
        std::string CatalogueEntry::*field;
        std::vector<std::string> values;
        Kinds expected;
    };
    for (const Row& row : {
             Row{&CatalogueEntry::name, {longest}, {}},
             Row{&CatalogueEntry::name, {""}, {Kind::NoName}},
             Row{&CatalogueEntry::name, {longest + "x"}, {Kind::ValueTooLong}},
             Row{&CatalogueEntry::url, {longest + "x"}, {Kind::ValueTooLong}},
             Row{&CatalogueEntry::zip, {"", "a.rar", "zip"}, {Kind::ArchiveType}},
             Row{&CatalogueEntry::zip,
                 {"..\\x.zip", "a/b.zip", "a:b.zip", "con.zip", "a\x01.zip"},
                 {Kind::ArchiveName}},
             Row{&CatalogueEntry::name, {"\"x\"", "'x'"}, {Kind::ValueForm}},
             Row{&CatalogueEntry::name, {"'x", "\""}, {}},
             Row{&CatalogueEntry::zip, {"PEBUILDER3110A.Zip"}, {Kind::DuplicateArchive}},
             Row{&CatalogueEntry::cat, {"400", ""}, {Kind::UnknownCategory}},
             Row{&CatalogueEntry::crc, {"0", "FFFFFFFF"}, {}},
             Row{&CatalogueEntry::crc,
                 {"", "0012ABCD", "12abcd", "0x12", "123456789", "00"},
                 {Kind::CrcForm}},
             Row{&CatalogueEntry::url,
                 {"", "host", "http://host", "host/dir/x.zip", "http://host/a:b@c",
                  "http://a/x.zip, b/x.zip ,c", "192.168.0.1"},
                 {}},
             Row{&CatalogueEntry::url,
                 {"https://host/x", "HTTP://host/x", "ftp://host", "http://host:8080/x", "host:80",
                  "http://me@host/", "http://", "http:///x", "/x", "a,,b", "http://host/a b.zip",
                  "a.example,b.example", "http://host\t/x", "http://ho\x7Fst/", "http://h\xF6st/",
                  "http://a\\b"},
                 {Kind::Address}},
         })
        for (const std::string& value : row.values) {
            CAPTURE(value);
            Catalogue catalogue = Good();
            catalogue.plugins[0].*row.field = value;
            CHECK(KindsOf(CheckCatalogue(catalogue, {})) == row.expected);
        }
}

TEST_CASE("archives: expected and found, missing, and what is in them") {
    struct Row {
        const char* written;
        ArchiveFacts facts;
        const char* url;
        Kinds expected;
        const char* lastLine;
    };
    const ArchiveFacts missing;
    const auto present = [](const char* crc) { return ArchiveFacts{true, true, crc}; };
    for (const Row& row : {
             Row{"12ABCD", present("12ABCD"), "", {}, ""},
             Row{"12ABCD", missing, "http://h/x", {}, ""},
             Row{"12ABCD", missing, "", {Kind::ArchiveMissing}, "no address to download it from"},
             Row{"12ABCD",
                 present("12ABCE"),
                 "",
                 {Kind::CrcDiffers},
                 "CRC-32 \"12ABCD\" expected, \"12ABCE\" found"},
             Row{"12ABCD", present("12ABCE"), "http://h/x", {Kind::CrcDiffers}, "found"},
             Row{"12ABCD", present(""), "", {Kind::CrcDiffers}, "is empty or cannot be read"},
             Row{"012abcd", present("12ABCD"), "", {Kind::CrcForm}, "written \"12ABCD\""},
             Row{"", present("12ABCD"), "", {Kind::CrcForm, Kind::CrcDiffers}, "CRC-32 \"12ABCD\""},
         }) {
        CAPTURE(row.written);
        Catalogue catalogue = Good();
        catalogue.plugins[0].crc = row.written;
        catalogue.plugins[0].url = row.url;
        const auto factsOf = [&](const std::string& archive) {
            return archive == "plug.CAB" ? row.facts : present("12ABCD");
        };
        const CatalogueCheck check = CheckCatalogue(catalogue, {factsOf, {}});
        CHECK(KindsOf(check) == row.expected);
        if (!check.problems.empty())
            CHECK(check.problems.back().sentence.find(row.lastLine) != std::string::npos);
    }
    // Only the first base component is ever downloaded.
    Catalogue catalogue = Good();
    catalogue.baseComponents.push_back(GoodEntry("Second", "second.zip"));
    for (CatalogueEntry& entry : catalogue.baseComponents)
        entry.url = "http://h/x";
    catalogue.plugins[0].url = "http://h/x";
    const auto none = [](const std::string&) { return ArchiveFacts(); };
    const CatalogueCheck check = CheckCatalogue(catalogue, {none, {}});
    CHECK(KindsOf(check) == Kinds{Kind::ArchiveMissing});
    CHECK(check.archivesToDownload == 2);
    // What cannot be extracted of an archive that is there.
    const auto all = [](const std::string&) { return ArchiveFacts{true, true, "12ABCD"}; };
    const auto faults = [](const std::string& archive) {
        return std::vector<std::string>(archive == "plug.CAB" ? 7 : 0, "a.txt: encrypted");
    };
    const CatalogueCheck content = CheckCatalogue(Good(), {all, faults});
    CHECK(KindsOf(content) == Kinds(6, Kind::ArchiveContent));
    CHECK(content.problems[0].Line() == "plug-in \"Plug\": \"plug.CAB\": a.txt: encrypted");
    CHECK(content.problems[5].sentence.find("and 2 more") != std::string::npos);
}

TEST_CASE("lists that a build or the wizard cannot work with") {
    Catalogue catalogue = Good();
    catalogue.baseComponents[0].zip = "base.zip";
    CHECK(KindsOf(CheckCatalogue(catalogue, {})) == Kinds{Kind::FirstArchive});
    catalogue.baseComponents = {CatalogueEntry()};
    CHECK(KindsOf(CheckCatalogue(catalogue, {})) == Kinds{Kind::NoComponents});
    catalogue.baseComponents.clear();
    CHECK(KindsOf(CheckCatalogue(catalogue, {})) == Kinds{Kind::NoComponents});
    catalogue = Good();
    for (int i = 1; i < 256; ++i) {
        catalogue.plugins.push_back(GoodEntry("p", "p" + std::to_string(i) + ".zip"));
        catalogue.plugins.back().cat = "300";
    }
    CHECK(CheckCatalogue(catalogue, {}).problems.empty());
    catalogue.plugins.push_back(GoodEntry("p", "last.zip"));
    catalogue.plugins.back().cat = "300";
    CHECK(KindsOf(CheckCatalogue(catalogue, {})) == Kinds{Kind::TooMany});
    catalogue = Good();
    catalogue.plugins.push_back(GoodEntry("Same", "PLUG.zip"));
    catalogue.plugins[1].cat = "200";
    CHECK(KindsOf(CheckCatalogue(catalogue, {})) == Kinds{Kind::SameFolder});
    catalogue.plugins[1].cat = "300";
    CHECK(CheckCatalogue(catalogue, {}).problems.empty());
    for (const char* folder : {"", "..", "C:\\x", "a|b", "a\\..\\b"}) {
        catalogue.installFolder = folder;
        CHECK(KindsOf(CheckCatalogue(catalogue, {})) == Kinds{Kind::InstallFolder});
    }
}

TEST_CASE("categories and section names") {
    Catalogue catalogue = Good();
    std::erase_if(catalogue.categories,
                  [](const CategoryRecord& category) { return category.key != "200"; });
    CHECK(KindsOf(CheckCatalogue(catalogue, {})) == Kinds(3, Kind::MissingPrefix));
    CHECK(
        CheckCatalogue(Good(), {}, {std::string(200, 'a'), std::string(52, 'b')}).problems.empty());
    CHECK(KindsOf(CheckCatalogue(Good(), {}, {std::string(200, 'a'), std::string(53, 'b')})) ==
          Kinds{Kind::SectionNames});
    for (const CategoryRecord& bad :
         {CategoryRecord{"x", "", ""}, CategoryRecord{"x", "100", ""},
          CategoryRecord{"x", "showcategories", ""}, CategoryRecord{"x", "a=b", ""},
          CategoryRecord{"x", "[a", ""}, CategoryRecord{"x", ";a", ""},
          CategoryRecord{"x", "a ", ""}, CategoryRecord{"x", "a\tb", ""},
          CategoryRecord{"", "9", ""}, CategoryRecord{"..", "9", ""},
          CategoryRecord{"a\\b", "9", ""}, CategoryRecord{"nul", "9", ""},
          CategoryRecord{"100_X", "9", ""}, CategoryRecord{std::string(255, 'x'), "9", ""}}) {
        CAPTURE(bad.key);
        CAPTURE(bad.value);
        catalogue = Good();
        catalogue.categories.push_back(bad);
        CHECK(KindsOf(CheckCatalogue(catalogue, {})) == Kinds{Kind::Category});
    }
}

TEST_CASE("a line names the entry, by its place when it has no name") {
    Catalogue catalogue = Good();
    catalogue.plugins.push_back(GoodEntry("", "x.zip"));
    catalogue.plugins[1].cat = "100";
    const auto problems = CheckCatalogue(catalogue, {}).problems;
    REQUIRE(problems.size() == 1);
    CHECK(problems[0].Line() == "plug-in 2: it has no name");
    CHECK(problems[0].place == EntryPlace{EntryList::Plugins, 1});
    catalogue = Good();
    catalogue.categories.clear();
    CHECK_FALSE(CheckCatalogue(catalogue, {}).problems.front().place);
}
