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
    catalogue.baseComponents = {GoodEntry("Base", "base.zip")};
    catalogue.plugins = {GoodEntry("Plug", "plug.CAB")};
    catalogue.plugins[0].cat = "200";
    for (const char* key : {"100", "200", "300", "500"})
        catalogue.categories.push_back({"value", key, "caption"});
    return catalogue;
}

using Kinds = std::vector<Kind>;

Kinds KindsOf(const std::vector<CatalogueProblem>& problems) {
    Kinds kinds;
    for (const CatalogueProblem& problem : problems) {
        kinds.push_back(problem.kind);
    }
    return kinds;
}

} // namespace

TEST_CASE("a good catalogue has no problems") {
    const auto crcOf = [](const std::string& archive) {
        return std::string(archive == "base.zip" ? "12ABCD" : "");
    };
    CHECK(CheckCatalogue(Good(), crcOf, {"Install", "Base", "Plugin", "Categories"}).empty());
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
             Row{&CatalogueEntry::zip, {"BASE.Zip"}, {Kind::DuplicateArchive}},
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
                  "a.example,b.example"},
                 {Kind::Address}},
         })
        for (const std::string& value : row.values) {
            CAPTURE(value);
            Catalogue catalogue = Good();
            catalogue.plugins[0].*row.field = value;
            CHECK(KindsOf(CheckCatalogue(catalogue, {})) == row.expected);
        }
}

TEST_CASE("archives that are present, whatever form the catalogue's checksum has") {
    struct Row {
        const char* written;
        const char* present;
        Kinds expected;
    };
    for (const Row& row : {
             Row{"12ABCD", "", {}},
             Row{"12ABCD", "12ABCE", {Kind::CrcDiffers}},
             Row{"012abcd", "12ABCD", {Kind::CrcForm}},
             Row{"", "12ABCD", {Kind::CrcForm, Kind::CrcDiffers}},
         }) {
        CAPTURE(row.written);
        Catalogue catalogue = Good();
        catalogue.plugins[0].crc = row.written;
        const auto crcOf = [&](const std::string& archive) {
            return std::string(archive == "plug.CAB" ? row.present : "");
        };
        CHECK(KindsOf(CheckCatalogue(catalogue, crcOf)) == row.expected);
    }
}

TEST_CASE("categories and section names") {
    Catalogue catalogue = Good();
    std::erase_if(catalogue.categories,
                  [](const CategoryRecord& category) { return category.key != "200"; });
    CHECK(KindsOf(CheckCatalogue(catalogue, {})) == Kinds(3, Kind::MissingPrefix));
    CHECK(CheckCatalogue(Good(), {}, {std::string(200, 'a'), std::string(52, 'b')}).empty());
    CHECK(KindsOf(CheckCatalogue(Good(), {}, {std::string(200, 'a'), std::string(53, 'b')})) ==
          Kinds{Kind::SectionNames});
}

TEST_CASE("a line names the entry, by its place when it has no name") {
    Catalogue catalogue = Good();
    catalogue.plugins.push_back(GoodEntry("", "x.zip"));
    catalogue.plugins[1].cat = "100";
    const auto problems = CheckCatalogue(catalogue, {});
    REQUIRE(problems.size() == 1);
    CHECK(problems[0].Line() == "plug-in 2: it has no name");
    CHECK(problems[0].place == EntryPlace{EntryList::Plugins, 1});
    catalogue = Good();
    catalogue.categories.clear();
    CHECK_FALSE(CheckCatalogue(catalogue, {}).front().place);
}
