#include "catalogue/modCatalogueCheck.h"

#include "ExpectedText.h"

#include <algorithm>
#include <functional>

using namespace vesk;

namespace {

using Change = std::function<void(Catalogue&)>;
using Facts = std::function<ArchiveFacts(const std::string& archive)>;

CatalogueEntry Entry(const std::string& name, const std::string& zip,
                     const std::string& category = "") {
    return {name, zip, category, false, false, "", "12ABCD"};
}

/// Collects what the check says of changed catalogues, for tests/data/checks.txt.
struct Fixture {
    /// @param name of the case in that file
    CatalogueCheck Check(const std::string& name, const Change& change,
                         const ArchiveSource& archives = {},
                         const std::vector<std::string>& sectionNames = {}) {
        Catalogue catalogue;
        catalogue.installFolder = "tree";
        catalogue.baseComponents = {Entry("Base", "pebuilder3110a.zip")};
        catalogue.plugins = {Entry("Plug", "plug.CAB", "200")};
        for (const char* key : {"100", "200", "300", "500"})
            catalogue.categories.push_back({std::string(key) + "_x", key, "caption"});
        change(catalogue);
        const CatalogueCheck check = CheckCatalogue(catalogue, archives, sectionNames);
        text += "= " + name + "\n";
        for (const CatalogueProblem& problem : check.problems) {
            // The kind is what the editor tells faults apart by, the place where it leads to.
            text += "kind " + std::to_string(static_cast<int>(problem.kind));
            if (problem.place)
                text += ", entry " + std::to_string(problem.place->index + 1);
            text += ": " + problem.Line() + "\n";
        }
        return check;
    }
    void CheckArchive(const std::string& name, const std::string& crc, const std::string& url,
                      const ArchiveFacts& facts, std::size_t contentFaults = 0) {
        const auto change = [&](Catalogue& catalogue) {
            catalogue.plugins[0].crc = crc;
            catalogue.plugins[0].url = url;
        };
        const auto isPlugin = [](const std::string& archive) { return archive == "plug.CAB"; };
        const CatalogueCheck check =
            Check(name, change,
                  {[&](const std::string& archive) {
                       return isPlugin(archive) ? facts : ArchiveFacts{true, true, "12ABCD"};
                   },
                   [&](const std::string& archive) {
                       return std::vector<std::string>(isPlugin(archive) ? contentFaults : 0,
                                                       "a.txt: encrypted");
                   }});
        if (check.problems.empty())
            text += check.Verdict() + "\n";
    }

    std::string text;
};

} // namespace

TEST_CASE_FIXTURE(Fixture, "what the check says of each thing that would go wrong in a build") {
    const std::string longest(254, 'x');
    struct Row {
        std::string CatalogueEntry::*field;
        std::vector<std::string> values;
    };
    for (const auto& [field, values] : {
             Row{&CatalogueEntry::name, {longest, "", longest + "x", "\"x\"", "'x'", "'x", "\""}},
             Row{&CatalogueEntry::zip,
                 {"", "a.rar", "zip", "..\\x.zip", "a/b.zip", "a:b.zip", "con.zip", "a\x01.zip",
                  "PEBUILDER3110A.Zip"}},
             Row{&CatalogueEntry::cat, {"400", ""}},
             Row{&CatalogueEntry::crc,
                 {"0", "FFFFFFFF", "", "0012ABCD", "12abcd", "0x12", "123456789", "00"}},
             Row{&CatalogueEntry::url,
                 {"",
                  "host",
                  "http://host",
                  "host/dir/x.zip",
                  "http://host/a:b@c",
                  "http://a/x.zip, b/x.zip ,c",
                  "192.168.0.1",
                  longest + "x",
                  "https://host/x",
                  "HTTP://host/x",
                  "ftp://host",
                  "http://host:8080/x",
                  "host:80",
                  "http://me@host/",
                  "http://",
                  "http:///x",
                  "/x",
                  "a,,b",
                  "http://host/a b.zip",
                  "a.example,b.example",
                  "http://host\t/x",
                  "http://ho\x7Fst/",
                  "http://h\xF6st/",
                  "http://a\\b"}},
         })
        for (const std::string& value : values)
            Check("field " + value, [&](Catalogue& c) { c.plugins[0].*field = value; });

    for (const char* folder : {"", "..", "C:\\x", "a|b", "a\\..\\b"})
        Check(std::string("folder ") + folder, [&](Catalogue& c) { c.installFolder = folder; });
    // Key and folder name.
    for (const std::string& line : Split("/x,100/x,showcategories/x,a=b/x,[a/x,;a/x,a "
                                         "/x,a\tb/x,9/,9/..,9/a\\b,9/nul,9/100_X,9/" +
                                             longest + "x",
                                         ','))
        Check("category " + line, [&](Catalogue& c) {
            c.categories.push_back({line.substr(line.find('/') + 1), Split(line, '/')[0], ""});
        });
    Check("one category", [](Catalogue& c) { c.categories = {c.categories[1]}; });
    for (const std::size_t length : {52, 53})
        Check("section names", [](Catalogue&) {}, {},
              {std::string(200, 'a'), std::string(length, 'b')});

    Check("emptied plug-ins", [](Catalogue& c) { c.plugins = {CatalogueEntry()}; });
    Check("emptied components", [](Catalogue& c) { c.baseComponents = {CatalogueEntry()}; });
    Check("no components", [](Catalogue& c) { c.baseComponents.clear(); });
    Check("other first", [](Catalogue& c) { c.baseComponents[0].zip = "base.zip"; });
    for (const auto& plugin : {Entry("Same", "PLUG.zip", "200"), Entry("Other", "PLUG.zip", "300"),
                               Entry("", "x.zip", "100")})
        Check("plug-in " + plugin.name, [&](Catalogue& c) { c.plugins.push_back(plugin); });
    for (const int count : {256, 257})
        Check("many plug-ins", [&](Catalogue& c) {
            for (int i = 1; i < count; ++i)
                c.plugins.push_back(Entry("p", "p" + std::to_string(i) + ".zip", "300"));
        });

    const ArchiveFacts missing, good{true, true, "12ABCD"};
    CheckArchive("good", "12ABCD", "http://h/x", good);
    CheckArchive("to download", "12ABCD", "http://h/x", missing);
    CheckArchive("missing", "12ABCD", "", missing);
    CheckArchive("other", "12ABCD", "http://h/x", {true, true, "12ABCE"});
    CheckArchive("empty", "12ABCD", "", {true, true, ""});
    CheckArchive("forged", "12ABCD", "", {true, true, "12ABCD", "SHA-256 differs"});
    CheckArchive("another form", "012abcd", "", good);
    CheckArchive("no checksum", "", "", good);
    for (const std::size_t faults : {5, 7})
        CheckArchive("what is in it", "12ABCD", "", good, faults);
    // Only the first base component is ever downloaded.
    const auto withAddresses = [](Catalogue& c) {
        c.baseComponents.push_back(Entry("Second", "second.zip"));
        for (CatalogueEntry* entry : {&c.baseComponents[0], &c.baseComponents[1], &c.plugins[0]})
            entry->url = "http://h/x";
    };
    const auto none = [&](const std::string&) { return missing; };
    CHECK(Check("missing components", withAddresses, {none, {}}).archivesToDownload == 2);

    std::ranges::replace_if(
        text, [](char c) { return (c < ' ' && c != '\n') || c == '\x7F'; }, '?');
    test::CheckExpected("checks", text);
}
