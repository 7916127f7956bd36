#include "catalogue/modCatalogueCheck.h"

#include "ExpectedText.h"

#include <algorithm>
#include <map>

using namespace vesk;

namespace {

CatalogueEntry Entry(const std::string& name, const std::string& zip,
                     const std::string& category = "") {
    return {name, zip, category, false, false, "", "12ABCD"};
}

/// What is checked: a good catalogue until something is changed.
struct Case {
    Case() {
        catalogue.installFolder = "tree";
        catalogue.baseComponents = {Entry("Base", "pebuilder3110a.zip")};
        catalogue.plugins = {Entry("Plug", "plug.CAB", "200")};
        for (const char* key : {"100", "200", "300", "500"})
            catalogue.categories.push_back({std::string(key) + "_x", key, "caption"});
    }
    /// Lets all archives be there, the plug-in's in a state of its own.
    void LookAt(const ArchiveFacts& facts, std::size_t contentFaults = 0) {
        const auto isPlugin = [](const std::string& archive) { return archive == "plug.CAB"; };
        archives.factsOf = [=](const std::string& archive) {
            return isPlugin(archive) ? facts : ArchiveFacts{true, true, "12ABCD"};
        };
        archives.contentFaultsOf = [=](const std::string& archive) {
            return std::vector<std::string>(isPlugin(archive) ? contentFaults : 0,
                                            "a.txt: encrypted");
        };
    }

    CatalogueEntry& Plugin() { return catalogue.plugins[0]; }

    Catalogue catalogue;
    ArchiveSource archives;
    std::vector<std::string> sectionNames;
};

using Text = std::string;
const ArchiveFacts kGood{true, true, "12ABCD"};

/// What each word of tests/data/checks.txt changes.
const std::map<Text, void (*)(Case&, const Text& value)> kChanges = {
    {"name", [](Case& c, const Text& value) { c.Plugin().name = value; }},
    {"zip", [](Case& c, const Text& value) { c.Plugin().zip = value; }},
    {"cat", [](Case& c, const Text& value) { c.Plugin().cat = value; }},
    {"crc", [](Case& c, const Text& value) { c.Plugin().crc = value; }},
    {"url", [](Case& c, const Text& value) { c.Plugin().url = value; }},
    {"folder", [](Case& c, const Text& value) { c.catalogue.installFolder = value; }},
    {"category",
     [](Case& c, const Text& value) { // key/folder name
         c.catalogue.categories.push_back(
             {value.substr(value.find('/') + 1), value.substr(0, value.find('/')), ""});
     }},
    {"one-category",
     [](Case& c, const Text&) { c.catalogue.categories = {c.catalogue.categories[1]}; }},
    {"section-names",
     [](Case& c, const Text& value) {
         c.sectionNames = {Text(200, 'a'), Text(std::stoul(value), 'b')};
     }},
    {"no-plug-in", [](Case& c, const Text&) { c.catalogue.plugins = {CatalogueEntry()}; }},
    {"empty-component",
     [](Case& c, const Text&) { c.catalogue.baseComponents = {CatalogueEntry()}; }},
    {"no-component", [](Case& c, const Text&) { c.catalogue.baseComponents.clear(); }},
    {"other-first", [](Case& c, const Text& zip) { c.catalogue.baseComponents[0].zip = zip; }},
    {"plug-in",
     [](Case& c, const Text& value) {
         const auto words = Split(value, '/');
         c.catalogue.plugins.push_back(Entry(words.at(0), words.at(1), words.at(2)));
     }},
    {"plug-ins",
     [](Case& c, const Text& count) {
         for (int i = 1; i < std::stoi(count); ++i)
             c.catalogue.plugins.push_back(Entry("p", "p" + std::to_string(i) + ".zip", "300"));
     }},
    {"archive",
     [](Case& c, const Text& value) { // its state, what the catalogue says of it
         static const std::map<Text, ArchiveFacts> kStates = {
             {"good", kGood},
             {"missing", {}},
             {"other", {true, true, "12ABCE"}},
             {"empty", {true, true, ""}},
             {"forged", {true, true, "12ABCD", "SHA-256 differs"}},
         };
         const auto words = Split(value, '|');
         c.Plugin().crc = words.at(1);
         c.Plugin().url = words.at(2);
         c.LookAt(kStates.at(words.at(0)));
     }},
    {"content-faults", [](Case& c, const Text& count) { c.LookAt(kGood, std::stoul(count)); }},
    {"content-twice",
     [](Case& c, const Text& count) { // of one archive that two entries have
         c.catalogue.plugins.push_back(c.Plugin());
         c.LookAt(kGood, std::stoul(count));
     }},
    {"all-missing",
     [](Case& c, const Text& url) { // only the first base component is ever downloaded
         c.catalogue.baseComponents.push_back(Entry("Second", "second.zip"));
         for (auto* entry : {&c.catalogue.baseComponents.front(),
                             &c.catalogue.baseComponents.back(), &c.Plugin()})
             entry->url = url;
         c.archives.factsOf = [](const Text&) { return ArchiveFacts(); };
     }},
};

} // namespace

TEST_CASE("what the check says of each thing that would go wrong in a build") {
    test::CheckAnswers("checks", [](const Text& question) {
        const std::size_t blank = std::min(question.find(' '), question.size());
        Text value = question.substr(std::min(blank + 1, question.size()));
        for (const auto& [name, c] : {std::pair{"{01}", "\x01"}, {"{TAB}", "\t"}, {"{7F}", "\x7F"}})
            value = ReplaceAll(value, name, c);
        const auto change = kChanges.at(question.substr(0, blank));
        Case checked;
        change(checked, value);
        const CatalogueCheck check =
            CheckCatalogue(checked.catalogue, checked.archives, checked.sectionNames);
        Text text;
        for (const CatalogueProblem& problem : check.problems) {
            // The kind is what the editor tells faults apart by, the place where it leads to.
            text += "kind " + std::to_string(static_cast<int>(problem.kind));
            if (problem.place)
                text += ", entry " + std::to_string(problem.place->index + 1);
            text += ": " + problem.Line() + "\n";
        }
        if (checked.archives.factsOf)
            text += (check.problems.empty()
                         ? check.Verdict()
                         : "to download: " + std::to_string(check.archivesToDownload)) +
                    "\n";
        std::ranges::replace_if(
            text, [](char c) { return (c < ' ' && c != '\n') || c == '\x7F'; }, '?');
        return text;
    });
}
