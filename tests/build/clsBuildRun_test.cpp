#include "build/clsBuildRun.h"

#include "ExpectedText.h"
#include "RecordingFrontEnd.h"
#include "TestFolder.h"
#include "archive/ZipBuilder.h"
#include "base/modFile.h"
#include "base/modText.h"
#include "build/clsBuildLog.h"
#include "build/clsRemovableTree.h"
#include "build/modFileOperations.h"
#include "catalogue/modArchiveState.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <stdexcept>

using namespace vesk;
using namespace vesk::test;

namespace {

using Texts = std::vector<std::string>;

constexpr const char* kInf =
    "[Version]\r\nSignature=\"$Windows NT$\"\r\n[PEBuilder]\r\nName=1. Boot\r\n"
    "[Append]\r\nnu2menu.xml, boot.xml\r\n";

/// A program folder with a catalogue of one base component and two plug-ins, ready to build.
struct Fixture {
    Fixture() {
        catalogue.showCategories = true;
        catalogue.categories = {{"100_tools", "100", "Tools"}};
        catalogue.baseComponents = {{"PE Builder", "pebuilder3110a.zip", "", true, true, "u", ""}};
        catalogue.baseComponents[0].crc = WriteArchive(
            "pebuilder3110a.zip",
            {TestMember::Stored("mkisofs.exe", "x"), TestMember::Stored("pebuilder.exe", "x"),
             TestMember::Stored("plugin/a43/a43.inf", "x"),
             TestMember::Stored("plugin/bootfix/bootfix.inf", kInf)});
        AddPlugin("One", "one.zip");
        AddPlugin("Two", "two.zip");
        folder.Write("program\\readme.txt", "read me");
    }

    [[nodiscard]] std::string WriteArchive(const std::string& name,
                                           const std::vector<TestMember>& members) const {
        return clsCRC().CalculateFile(folder.Write("program\\" + name, MakeZip(members)));
    }
    void AddPlugin(const std::string& name, const std::string& zip) {
        const std::string crc = WriteArchive(
            zip, {TestMember::Stored("p.inf", "[PEBuilder]\r\nName=" + name + "\r\n")});
        catalogue.plugins.push_back({name, zip, "100", true, false, "", crc});
    }
    /// A tree of an earlier build with a file in it.
    void WriteOldTree() const {
        folder.Write("tree\\vesklive.ini", "of an earlier build");
        folder.Write("tree\\old.txt", "x");
    }
    /// Does something when a line is logged that begins so.
    void When(const std::string& line, const std::function<void()>& act) {
        frontEnd.onLine = [line, act](const std::string& logged) {
            if (logged.starts_with(line))
                act();
        };
    }

    BuildEnding Run() {
        clsBuildRun run(inputs, catalogue, frontEnd);
        run.SetNetworkProbe([this] { return network; });
        return run.Run().ending;
    }

    TestFolder folder;
    Catalogue catalogue;
    BuildInputs inputs{
        clsInstallFolder(folder / "tree", clsFolderGuard({})), "", folder / "program\\", {}};
    RecordingFrontEnd frontEnd;
    bool network = true;
    FileHandle lock;
};

using Text = const std::string&;

/// "ENTRY FIELD VALUE" of the catalogue, the entry being base, one or two.
void SetField(Fixture& f, Text text) {
    static const std::map<std::string, std::string CatalogueEntry::*> kFields{
        {"zip", &CatalogueEntry::zip},
        {"cat", &CatalogueEntry::cat},
        {"url", &CatalogueEntry::url},
        {"crc", &CatalogueEntry::crc}};
    const auto words = Split(text, ' ');
    auto& entries = words.at(0) == "base" ? f.catalogue.baseComponents : f.catalogue.plugins;
    std::string& field = entries.at(words.at(0) == "two" ? 1 : 0).*kFields.at(words.at(1));
    field = words.size() > 2 ? words[2] : "";
}

/// What a run can find: the steps of runs.txt.
const std::map<std::string, void (*)(Fixture&, Text)> kSteps{
    {"old", [](Fixture& f, Text) { f.WriteOldTree(); }},
    {"write", [](Fixture& f, Text name) { f.folder.Write(name, "x"); }},
    {"clear", [](Fixture& f, Text name) { f.folder.Write(name, ""); }},
    {"lock", [](Fixture& f, Text name) { f.lock = OpenExclusively(f.folder.Write(name, "x")); }},
    {"remove", [](Fixture& f, Text name) { RemoveFile(f.folder / name); }},
    {"stop", [](Fixture& f, Text line) { f.When(line, [&f] { f.frontEnd.stop = true; }); }},
    {"swap",
     [](Fixture& f, Text line) {
         f.When(line, [&f] {
             MoveFileA((f.folder / "tree").c_str(), (f.folder / "moved").c_str());
             f.WriteOldTree();
         });
     }},
    {"appear", [](Fixture& f,
                  Text line) { f.When(line, [&f] { f.folder.Write("tree\\letter.txt", "x"); }); }},
    {"agree", [](Fixture& f, Text) { f.inputs.replaceForeign = true; }},
    {"programs",
     [](Fixture& f, Text) {
         f.inputs.installFolder =
             clsInstallFolder(f.folder / "tree", clsFolderGuard({}, {Widen(f.folder.Path())}));
     }},
    {"offline", [](Fixture& f, Text) { f.network = false; }},
    {"download",
     [](Fixture& f, Text how) {
         f.frontEnd.download = [how](Text destination) {
             if (how == "fails")
                 throw std::runtime_error("no window");
             if (how == "differs") {
                 WriteCompleteFile(destination, "something else");
                 WriteCompleteFile(PartialPath(destination), "and a part of it");
             }
             return how == "differs" ? DownloadResult::CrcDiffers : DownloadResult::Cancelled;
         };
     }},
    {"brought", // by another build
     [](Fixture& f, Text name) {
         const std::string content = ReadWholeFile(f.folder / name);
         RemoveFile(f.folder / name);
         f.frontEnd.download = [content](Text destination) {
             WriteCompleteFile(destination, content);
             return DownloadResult::Failed;
         };
     }},
    {"set", SetField},
    {"base",
     [](Fixture& f, Text kind) {
         if (kind == "second")
             return f.catalogue.baseComponents.push_back(f.catalogue.plugins[0]);
         f.catalogue.baseComponents.assign(kind == "empty" ? 1 : 0, CatalogueEntry());
     }},
    {"component", // ARCHIVE MEMBER CONTENT
     [](Fixture& f, Text text) {
         const auto words = Split(text, ' ');
         CatalogueEntry entry{"", words.at(0), "", true, true, "", ""};
         entry.crc = f.WriteArchive(entry.zip, {TestMember::Stored(words.at(1), words.at(2))});
         f.catalogue.baseComponents.push_back(entry);
     }},
    {"members",
     [](Fixture& f, Text names) {
         std::vector<TestMember> members;
         for (const std::string& name : Split(names, ' '))
             members.push_back(TestMember::Stored(name, ""));
         f.catalogue.baseComponents[0].crc = f.WriteArchive("pebuilder3110a.zip", members);
     }},
    {"plugin", [](Fixture& f, Text zip) { f.AddPlugin("Other", zip); }},
    {"twice", [](Fixture& f, Text) { f.catalogue.plugins.push_back(f.catalogue.plugins[1]); }},
    {"archive",
     [](Fixture& f, Text name) {
         f.folder.Write("victim.zip", "x");
         f.catalogue.plugins[0] = {"One", name, "100", true, false, "http://h/x.zip", "8CDC1683"};
     }},
    {"category", [](Fixture& f, Text folder) { f.catalogue.categories[0].value = folder; }},
    {"caption", [](Fixture& f, Text caption) { f.catalogue.categories[0].caption = caption; }},
};

/// What became of a run, and what lies in the fixture's folder after it, a line for each folder.
std::string TextOf(const Fixture& fixture) {
    const BuildOutcome& outcome = *fixture.frontEnd.outcome;
    std::string text =
        std::array{"  done", "  failed", "  aborted"}.at(static_cast<std::size_t>(outcome.ending)) +
        std::string(", ") +
        std::array{"whole", "with problems", "not usable", "not built"}.at(
            static_cast<std::size_t>(VerdictOf(outcome))) +
        (outcome.reason.empty() ? "" : ": " + outcome.reason);
    for (const std::string& destination : fixture.frontEnd.downloads)
        text += "\n  download: " + destination;
    for (const std::string& line : fixture.frontEnd.lines)
        text += IsWarningLine(line) ? "\n  log: " + line : "";
    for (const std::string& problem : fixture.frontEnd.problems)
        text += "\n  problem: " + problem;
    std::string all = "*.*";
    std::map<std::string, std::string> folders;
    for (const std::string& path : FindFiles(fixture.folder.Path() + "\\", all, "").paths)
        folders[ParentOf(path)].append(" ").append(FileNameOf(path));
    for (const auto& [folder, names] : folders)
        text.append("\n  ").append(folder).append(":").append(names);
    return ReplaceAll(text, fixture.folder.Path(), "{FOLDER}") + "\n";
}

} // namespace

// What is in the tree, asked and shown is compared whole where the delivered programs build.
TEST_CASE_FIXTURE(Fixture, "a build adds what it moved to the catalogue, and counts all as done") {
    CreateFolderPath(clsRemovableTree::StartMenuPath()); // of an earlier build, to be deleted
    CHECK(Run() == BuildEnding::Done);
    CHECK(frontEnd.done == frontEnd.total);
    CHECK(frontEnd.fractions.back() == 1);
    CHECK(std::ranges::is_sorted(frontEnd.fractions));
    CHECK(std::set(frontEnd.fractions.begin(), frontEnd.fractions.end()).size() >
          frontEnd.total + 1); // within a component, too
    Texts& shown = frontEnd.statuses;
    shown.erase(std::ranges::unique(shown).begin(), shown.end());
    CHECK(shown == Texts{"Removing directory", "Deleting folder", "Processing: pebuilder3110a.zip",
                         "Deleting folder", "Deleting file", "Modifying INF - Name",
                         "Modifying INF - Append", "Modifying INF - Name", "Processing: one.zip",
                         "Modifying INF - Name", "Processing: two.zip", "Modifying INF - Name",
                         "Deleting folder", "Done"});
    REQUIRE(catalogue.plugins.size() == 3);
    CHECK(catalogue.plugins[2] == CatalogueEntry{"100 Boot", "", "100", false, false, "", ""});
}

TEST_CASE("whatever happens, a run ends in its own way, with everything else done and told") {
    CheckAnswers("runs", [](const std::string& question) {
        Fixture fixture;
        for (const std::string& step : Split(question.substr(question.find(": ") + 2), ';')) {
            const std::string text =
                ReplaceAll(TrimBlanks(step), "{FOLDER}", fixture.folder.Path());
            const std::size_t end = std::min(text.find(' '), text.size());
            kSteps.at(text.substr(0, end))(fixture, TrimBlanks(text.substr(end)));
        }
        fixture.Run();
        CHECK(fixture.frontEnd.lines.back() == "click 'Finish' to exit");
        return TextOf(fixture);
    });
}

TEST_CASE_FIXTURE(Fixture, "a window stays alive while INF files need no edit") {
    const auto eventsWith = [&](const std::string& extension) {
        std::vector<TestMember> members;
        for (int i = 0; i < 100; ++i)
            members.push_back(TestMember::Stored(std::to_string(i) + extension, "x"));
        catalogue.plugins[0].crc = WriteArchive("one.zip", members);
        frontEnd.events = 0;
        Run();
        return frontEnd.events;
    };
    const std::size_t others = eventsWith(".txt");
    CHECK(eventsWith(".inf") > others + 50);
}

TEST_CASE_FIXTURE(Fixture, "a failure of the program itself is told, and its log is kept") {
    WriteOldTree();
    When("Deleting Folder", [] { throw std::runtime_error("no more paper"); });
    CHECK_THROWS_WITH(Run(), "no more paper");
    REQUIRE(frontEnd.outcome);
    CHECK(VerdictOf(*frontEnd.outcome) == BuildVerdict::NotBuilt);
    CHECK(frontEnd.problems == Texts{(folder / "tree") + ": not finished, no more paper"});
    CHECK(FileExists(folder / "tree\\veskbuild.unfinished")); // while a part of it may be gone
}
