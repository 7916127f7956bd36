#include "build/clsBuildRun.h"

#include "ExpectedText.h"
#include "RecordingFrontEnd.h"
#include "TestFolder.h"
#include "archive/ZipBuilder.h"
#include "base/modText.h"
#include "build/clsBuildLog.h"
#include "build/modFileOperations.h"
#include "catalogue/modArchiveState.h"

#include <array>
#include <map>
#include <stdexcept>

using namespace vesk;
using namespace vesk::test;

namespace {

using Texts = std::vector<std::string>;
using Members = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kInf =
    "[Version]\r\nSignature=\"$Windows NT$\"\r\n[PEBuilder]\r\nName=1. Boot\r\n"
    "[Append]\r\nnu2menu.xml, boot.xml\r\n";

/// A program folder with a catalogue of one base component and two plug-ins, ready to build.
struct Fixture {
    Fixture() {
        catalogue.showCategories = true;
        catalogue.categories = {{"100_tools", "100", "Tools"}};
        catalogue.baseComponents = {{"PE Builder", "pebuilder3110a.zip", "", true, true, "u", ""}};
        FillPeBuilder({{"mkisofs.exe", "x"},
                       {"pebuilder.exe", "x"},
                       {"plugin/a43/a43.inf", "x"},
                       {"plugin/bootfix/bootfix.inf", kInf}});
        AddPlugin("One", "one.zip");
        AddPlugin("Two", "two.zip");
        folder.Write("program\\readme.txt", "read me");
    }

    [[nodiscard]] std::string WriteArchive(const std::string& name, const Members& members) const {
        std::vector<TestMember> stored;
        for (const auto& [member, text] : members)
            stored.push_back(TestMember::Stored(member, text));
        return clsCRC().CalculateFile(folder.Write("program\\" + name, MakeZip(stored)));
    }
    void FillPeBuilder(const Members& members) {
        catalogue.baseComponents[0].crc = WriteArchive("pebuilder3110a.zip", members);
    }
    void AddPlugin(const std::string& name, const std::string& zip) {
        const std::string crc =
            WriteArchive(zip, {{"p.inf", "[PEBuilder]\r\nName=" + name + "\r\n"}});
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
    void StopAt(const std::string& line) {
        When(line, [this] { frontEnd.stop = true; });
    }
    void Download(DownloadResult result) {
        frontEnd.download = [result](const std::string& destination) {
            if (result == DownloadResult::CrcDiffers)
                WriteCompleteFile(destination, "something else");
            return result;
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

/// What became of a run, and what lies in the fixture's folder after it, a line for each folder.
std::string TextOf(const Fixture& fixture) {
    const BuildOutcome& outcome = *fixture.frontEnd.outcome;
    std::string text =
        std::array{"done", "failed", "aborted"}.at(static_cast<std::size_t>(outcome.ending)) +
        std::string(", ") +
        std::array{"whole", "with problems", "not usable", "not built"}.at(
            static_cast<std::size_t>(VerdictOf(outcome)));
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

// What is in the tree is compared whole with manifests, where the console builds.
TEST_CASE_FIXTURE(Fixture, "a build asks, counts, and adds what it moved to the catalogue") {
    WriteOldTree();
    CHECK(Run() == BuildEnding::Done);
    CHECK(frontEnd.questions == Texts{"Project folder allready exists. Do you want to continue"});
    CHECK(frontEnd.problems.empty());
    CHECK(VerdictOf(*frontEnd.outcome) == BuildVerdict::Whole);
    CHECK(frontEnd.done == 3);
    CHECK(frontEnd.total == 3);
    CHECK(frontEnd.fraction == 1);
    CHECK(frontEnd.statuses.back() == "Done");
    CHECK_FALSE(FileExists(folder / "tree\\veskbuild.unfinished"));
    REQUIRE(catalogue.plugins.size() == 3);
    CHECK(catalogue.plugins[2] == CatalogueEntry{"100 Boot", "", "100", false, false, "", ""});
}

TEST_CASE("whatever happens, a run ends in its own way, with everything else done and told") {
    std::vector<std::pair<std::string, std::function<void(Fixture&)>>> rows{
        {"a stop is obeyed at the next step",
         [](Fixture& f) { f.StopAt("Archive:  " + f.inputs.programPath + "one.zip"); }},
        {"a stop before the old tree goes",
         [](Fixture& f) {
             f.WriteOldTree();
             f.StopAt("Skipping download");
         }},
        {"another folder in the place of the one that was asked about",
         [](Fixture& f) {
             f.WriteOldTree();
             f.When("Skipping", [&f] {
                 MoveFileA((f.folder / "tree").c_str(), (f.folder / "moved").c_str());
                 f.WriteOldTree();
             });
         }},
        {"a folder that was made while the build ran",
         [](Fixture& f) { f.When("Skipping", [&f] { f.WriteOldTree(); }); }},
        {"what no build made, without a word to empty it",
         [](Fixture& f) { f.folder.Write("tree\\letter.txt", "x"); }},
        {"a catalogue with what the editor leaves of an empty list",
         [](Fixture& f) {
             f.WriteOldTree();
             f.catalogue.baseComponents = {CatalogueEntry()};
         }},
        {"a catalogue without base components",
         [](Fixture& f) { f.catalogue.baseComponents.clear(); }},
        {"no network for PE Builder's archive: nothing is touched, and all counts as done",
         [](Fixture& f) {
             f.WriteOldTree();
             f.inputs.installFolder.Mark();
             f.catalogue.baseComponents[0].crc = "BAD";
             f.network = false;
         }},
        {"PE Builder's archive with another checksum after the download as well",
         [](Fixture& f) {
             f.catalogue.baseComponents[0].crc = "BAD";
             f.Download(DownloadResult::CrcDiffers);
         }},
        {"a download that the user cancelled",
         [](Fixture& f) {
             f.catalogue.baseComponents[0].crc = "BAD";
             f.Download(DownloadResult::Cancelled);
         }},
        {"a plug-in is fetched when it is ticked, addressed and missing",
         [](Fixture& f) {
             RemoveFile(f.inputs.programPath + "one.zip");
             for (CatalogueEntry& plugin : f.catalogue.plugins)
                 plugin.url = "http://h/" + plugin.zip;
             f.Download(DownloadResult::CrcDiffers);
         }},
        {"a download that fails in the front end itself",
         [](Fixture& f) {
             f.catalogue.plugins.push_back({"3", "3.zip", "100", true, false, "u", "1"});
             f.frontEnd.download = [](const std::string&) -> DownloadResult {
                 throw std::runtime_error("no window");
             };
         }},
        {"a file of the old tree that is in use",
         [](Fixture& f) {
             f.WriteOldTree();
             f.lock = OpenExclusively(f.folder.Write("tree\\used.txt", "x"));
         }},
        {"folders in the place of what is written",
         [](Fixture& f) {
             f.FillPeBuilder({{"input.inf/", ""},
                              {"vesklive.ini/", ""},
                              {"readme.txt/", ""},
                              {"mymkisofs.exe/", ""},
                              {"Plugin/100_tools/one/p.inf/", ""}});
         }},
        {"empty checksums, which match nothing",
         [](Fixture& f) {
             f.folder.Write("program\\one.zip", "");
             f.catalogue.plugins[0].crc = f.catalogue.baseComponents[0].crc = "";
         }},
        {"a title that is too long, a plug-in of no category, one archive twice",
         [](Fixture& f) {
             f.catalogue.categories.insert(f.catalogue.categories.begin(),
                                           {"900_x", "900", std::string(60, 't')});
             f.catalogue.plugins[0].cat = "77";
             f.catalogue.plugins.push_back(f.catalogue.plugins[1]);
         }},
        {"a program in the place of PE Builder's archive",
         [](Fixture& f) {
             RemoveFile(f.inputs.programPath + kFirstArchiveName);
             f.catalogue.baseComponents[0].zip = "tool.exe";
             f.folder.Write("program\\tool.exe", "x");
         }},
        {"two archives for one folder", [](Fixture& f) { f.AddPlugin("Other", "one.cab"); }},
    };
    // What a catalogue may name: nothing outside the two folders is read, written or removed.
    for (const char* zip : {R"(..\victim.zip)", "../victim.zip", R"(..\program\..\victim.zip)", "",
                            "ReadMe.txt", "VESKBUILDER.INI", "uxtheme.dll"})
        rows.emplace_back(std::string("archive ") + zip, [zip](Fixture& f) {
            const std::string victim = f.folder.Write("victim.zip", "x");
            f.catalogue.plugins[0] = {
                "One", zip, "100", true, false, "http://h/x.zip", clsCRC().CalculateFile(victim)};
        });
    for (const char* value :
         {R"(..\..\outside)", R"(..\..\..)", R"(x\..\..\..\outside)", R"(C:\outside)"})
        rows.emplace_back(std::string("category ") + value, [value](Fixture& f) {
            f.catalogue.categories = {{value, "100", "Tools"}};
        });
    std::string text;
    for (const auto& [what, prepare] : rows) {
        Fixture fixture;
        prepare(fixture);
        fixture.Run();
        CHECK(fixture.frontEnd.lines.back() == "click 'Finish' to exit");
        CHECK((fixture.frontEnd.downloads.empty() || !what.starts_with("archive ")));
        text += "= " + what + ": " + TextOf(fixture);
    }
    CheckExpected("runs", text);
}

TEST_CASE_FIXTURE(Fixture, "a failure of the program itself is told, and its log is kept") {
    When("Plugins:", [] { throw std::runtime_error("no more paper"); });
    CHECK_THROWS_WITH(Run(), "no more paper");
    REQUIRE(frontEnd.outcome);
    CHECK(VerdictOf(*frontEnd.outcome) == BuildVerdict::NotBuilt);
    CHECK(frontEnd.problems == Texts{(folder / "tree") + ": not finished, no more paper"});
}
