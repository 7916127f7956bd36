#include "build/clsBuildRun.h"

#include "RecordingFrontEnd.h"
#include "TestArchive.h"
#include "TestFolder.h"
#include "base/UniqueHandle.h"
#include "base/modText.h"

#include <algorithm>

using namespace vesk;
using vesk::test::RecordingFrontEnd;
using vesk::test::TestArchive;
using vesk::test::TestFolder;

namespace {

constexpr const char* kInf =
    "[Version]\r\nSignature=\"$Windows NT$\"\r\n[PEBuilder]\r\nName=1. Boot\r\n"
    "[Append]\r\nnu2menu.xml, boot.xml\r\n";

/// A program folder with a catalogue of one base component and two plug-ins, ready to build.
struct Fixture {
    Fixture() {
        catalogue.showCategories = true;
        catalogue.categories = {{"100_tools", "100", "Tools"}};
        catalogue.baseComponents = {{"PE Builder", "pebuilder3110a.zip", "", true, true, "u", ""}};
        catalogue.baseComponents[0].crc =
            WriteArchive("pebuilder3110a.zip", {{"mkisofs.exe", "x"},
                                                {"pebuilder.exe", "x"},
                                                {"plugin/a43/a43.inf", "x"},
                                                {"plugin/bootfix/bootfix.inf", kInf}});
        AddPlugin("One", "one.zip");
        AddPlugin("Two", "two.zip");
        folder.Write("program\\readme.txt", "read me");
    }

    std::string WriteArchive(const std::string& name,
                             const std::vector<std::pair<std::string, std::string>>& members) {
        const TestArchive archive(members);
        return clsCRC().CalculateFile(folder.Write("program\\" + name, archive.Bytes()));
    }

    void AddPlugin(const std::string& name, const std::string& zip) {
        const std::string crc =
            WriteArchive(zip, {{"p.inf", "[PEBuilder]\r\nName=" + name + "\r\n"}});
        catalogue.plugins.push_back({name, zip, "100", true, false, "", crc});
    }

    BuildEnding Run() {
        clsBuildRun run(inputs, catalogue, frontEnd);
        run.SetNetworkProbe([this] { return network; });
        return run.Run().ending;
    }
    [[nodiscard]] bool Told(const std::string& part) const {
        return std::ranges::any_of(frontEnd.problems, [&](const std::string& problem) {
            return problem.find(part) != std::string::npos;
        });
    }

    [[nodiscard]] std::string InTree(const std::string& name) const {
        return inputs.installFolder.Path() + "\\" + name;
    }
    [[nodiscard]] bool PluginIsThere(const std::string& name) const {
        return FileExists(InTree("Plugin\\100_tools\\" + name + "\\p.inf"));
    }
    [[nodiscard]] bool ReachedDone() const {
        const auto& lines = frontEnd.lines;
        return lines.size() > 2 && lines.back() == "click 'Finish' to exit" &&
               lines[lines.size() - 2].starts_with("Done... [") &&
               frontEnd.outcome->ending == BuildEnding::Done && frontEnd.statuses.back() == "Done";
    }

    TestFolder folder;
    Catalogue catalogue;
    BuildInputs inputs{
        clsInstallFolder(folder / "tree", clsFolderGuard({})), "", folder / "program\\", {}};
    RecordingFrontEnd frontEnd;
    bool network = true;
};

FileHandle Lock(const std::string& path) {
    FileHandle lock(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    REQUIRE(static_cast<bool>(lock));
    return lock;
}

} // namespace

// What is in the tree is compared whole with manifests, where the console builds.
TEST_CASE_FIXTURE(Fixture, "a build asks, counts, and adds what it moved to the catalogue") {
    folder.Write("tree\\input.inf", "of an earlier build");
    folder.Write("tree\\old.txt", "of an earlier build");
    CHECK(Run() == BuildEnding::Done);
    CHECK(ReachedDone());
    CHECK(frontEnd.questions ==
          std::vector<std::string>{"Project folder allready exists. Do you want to continue"});
    CHECK(frontEnd.done == 3);
    CHECK(frontEnd.total == 3);
    CHECK_FALSE(FileExists(InTree("old.txt")));
    CHECK(PluginIsThere("one"));
    CHECK(PluginIsThere("two"));
    REQUIRE(catalogue.plugins.size() == 3);
    CHECK(catalogue.plugins[2] == CatalogueEntry{"100 Boot", "", "100", false, false, "", ""});
}

TEST_CASE_FIXTURE(Fixture, "the answer No leaves the folder as it is") {
    const std::string old = folder.Write("tree\\old.txt", "kept");
    folder.Write("tree\\vesklive.ini", "of an earlier build");
    frontEnd.answer = false;
    CHECK(Run() == BuildEnding::Aborted);
    CHECK(FileExists(old));
    REQUIRE(frontEnd.lines.size() == 2);
    CHECK(frontEnd.lines[0].starts_with("Aborted... ["));
    CHECK(frontEnd.statuses == std::vector<std::string>{"Confirmation", "Done"});
}

TEST_CASE_FIXTURE(Fixture, "a stop asked for is obeyed at the next step") {
    frontEnd.onLine = [this](const std::string& line) {
        frontEnd.stop = frontEnd.stop || line == "Archive:  " + inputs.programPath + "one.zip";
    };
    CHECK(Run() == BuildEnding::Aborted);
    CHECK(PluginIsThere("one"));
    CHECK_FALSE(PluginIsThere("two"));
    CHECK_FALSE(FileExists(InTree("vesklive.ini")));
}

TEST_CASE_FIXTURE(Fixture, "a stop asked for before the old tree goes leaves it as it is") {
    const std::string old = folder.Write("tree\\old.txt", "kept");
    folder.Write("tree\\vesklive.ini", "of an earlier build");
    frontEnd.onLine = [this](const std::string& line) {
        frontEnd.stop = frontEnd.stop || line.starts_with("Skipping download");
    };
    CHECK(Run() == BuildEnding::Aborted);
    CHECK(FileExists(old));
    CHECK_FALSE(frontEnd.Logged("Removing directory"));
}

TEST_CASE_FIXTURE(Fixture, "PE Builder's archive decides how a run goes on") {
    const std::string archive = inputs.programPath + "pebuilder3110a.zip";
    catalogue.baseComponents[0].crc = "BAD";

    SUBCASE("without a network nothing is touched, and the run ends as done") {
        network = false;
        const std::string old = folder.Write("tree\\old.txt", "kept");
        folder.Write("tree\\vesklive.ini", "of an earlier build");
        CHECK(Run() == BuildEnding::Done);
        CHECK(ReachedDone());
        CHECK(frontEnd.Logged("ERROR: no network connection, download failed"));
        CHECK(FileExists(old));
        CHECK(frontEnd.downloads.empty());
    }
    SUBCASE("a download with another checksum ends the run as failed and does not stay") {
        frontEnd.download = [](const std::string&) { return DownloadResult::CrcDiffers; };
        CHECK(Run() == BuildEnding::InstallFailed);
        CHECK(frontEnd.downloads == std::vector<std::string>{archive});
        CHECK_FALSE(FileExists(archive));
        CHECK(frontEnd.Logged("Warning: pebuilder3110a.zip CRC failed, setup cannot continue !!!"));
        CHECK(frontEnd.Logged("Install failed... ["));
        CHECK_FALSE(FolderExists(inputs.installFolder.Path()));
    }
    SUBCASE("failed and cancelled downloads go on without it") {
        for (const bool cancelled : {false, true}) {
            frontEnd.lines.clear();
            frontEnd.download = [&](const std::string&) {
                return cancelled ? DownloadResult::Cancelled : DownloadResult::Failed;
            };
            CHECK(Run() == BuildEnding::Done);
            CHECK(frontEnd.Logged(
                cancelled ? "Warning: download cancelled by user. !!!"
                          : "Warning: pebuilder3110a.zip could not be downloaded. !!!"));
            CHECK(frontEnd.Logged("Archive: " + archive + " [not found]"));
            CHECK_FALSE(FileExists(InTree("input.inf")));
            CHECK(PluginIsThere("one"));
        }
    }
    SUBCASE("a good download is used") {
        frontEnd.download = [&](const std::string&) {
            catalogue.baseComponents[0].crc = clsCRC().CalculateFile(archive);
            return DownloadResult::Done;
        };
        CHECK(Run() == BuildEnding::Done);
        CHECK(FileExists(InTree("pebuilder.exe")));
    }
}

TEST_CASE_FIXTURE(Fixture, "plug-ins are fetched when ticked, addressed and missing") {
    const std::string one = inputs.programPath + "one.zip";
    RemoveFile(one);
    catalogue.plugins[0].url = "http://h/one.zip";
    catalogue.plugins[1].url = "http://h/two.zip"; // its archive is there
    frontEnd.download = [this](const std::string& destination) {
        WriteCompleteFile(destination, "something else");
        return DownloadResult::CrcDiffers;
    };
    CHECK(Run() == BuildEnding::Done);
    CHECK(frontEnd.downloads == std::vector<std::string>{one});
    CHECK_FALSE(FileExists(one));
    CHECK(frontEnd.Logged("Warning: one.zip CRC failed. !!!"));
    CHECK(frontEnd.Logged("Archive: " + one + " [not found]"));
    CHECK(PluginIsThere("two"));
}

// Whatever fails, the run reaches its end with everything else done.
TEST_CASE_FIXTURE(Fixture, "no failing step ends the run") {
    const auto runs = [&] {
        CHECK(Run() == BuildEnding::Done);
        CHECK(ReachedDone());
        CHECK(PluginIsThere("two"));
    };
    SUBCASE("a file of the old tree is in use") {
        folder.Write("tree\\pebuilder.exe", "of an earlier build");
        const FileHandle lock = Lock(folder.Write("tree\\used.txt", "x"));
        folder.Write("tree\\other.txt", "x");
        runs();
        CHECK(FileExists(InTree("used.txt")));
        CHECK_FALSE(FileExists(InTree("other.txt")));
        CHECK(PluginIsThere("one"));
    }
    SUBCASE("an archive is in use") {
        const FileHandle lock = Lock(inputs.programPath + "one.zip");
        runs();
        CHECK(frontEnd.Logged("Warning: one.zip CRC failed. !!!"));
    }
    SUBCASE("an archive is no archive") {
        folder.Write("program\\one.zip", "text");
        catalogue.plugins[0].crc = clsCRC().CalculateString("text") != 0
                                       ? clsCRC().CalculateFile(inputs.programPath + "one.zip")
                                       : "";
        runs();
        CHECK_FALSE(PluginIsThere("one"));
    }
    SUBCASE("a member's place is taken by a folder") {
        catalogue.baseComponents[0].crc =
            WriteArchive("pebuilder3110a.zip", {{"input.inf/", ""},
                                                {"vesklive.ini/", ""},
                                                {"readme.txt/", ""},
                                                {"mymkisofs.exe/", ""},
                                                {"Plugin/100_tools/one/p.inf/", ""}});
        runs();
    }
    SUBCASE("a cabinet is damaged") {
        folder.Write("program\\one.cab", "MSCF");
        catalogue.plugins[0].zip = "one.cab";
        catalogue.plugins[0].crc = clsCRC().CalculateFile(inputs.programPath + "one.cab");
        runs();
    }
    SUBCASE("a script fails in its second line") {
        catalogue.baseComponents.push_back({"More", "more.zip", "", true, false, "", ""});
        catalogue.baseComponents[1].crc = WriteArchive(
            "more.zip", {{"x.script", "[base]\r\ndirmake,%ProgramPath%\\made\r\ndirmake\r\n"}});
        runs();
        CHECK(FolderExists(InTree("made")));
        CHECK_FALSE(FileExists(InTree("x.script")));
    }
    SUBCASE("no category, and a title that is too long") {
        catalogue.categories.insert(catalogue.categories.begin(),
                                    {"900_x", "900", std::string(60, 't')});
        catalogue.plugins[0].cat = "unknown";
        runs();
        CHECK(FileExists(InTree("Plugin\\one\\p.inf")));
    }
    SUBCASE("the read-me is missing, the download fails in the front end itself") {
        RemoveFile(inputs.programPath + "readme.txt");
        catalogue.plugins.push_back({"Three", "3.zip", "100", true, false, "u", "1"});
        frontEnd.download = [](const std::string&) -> DownloadResult {
            throw std::runtime_error("no window");
        };
        runs();
        CHECK(frontEnd.Logged("Warning: 3.zip could not be downloaded. !!!"));
    }
    SUBCASE("an extension that is neither zip nor cab is logged and left") {
        folder.Write("program\\one.rar", "x");
        catalogue.plugins[0].zip = "one.rar";
        catalogue.plugins[0].crc = clsCRC().CalculateFile(inputs.programPath + "one.rar");
        runs();
        CHECK(frontEnd.Logged("Archive:  " + inputs.programPath + "one.rar"));
    }
}

// A problem for each thing that was not done, and none for anything else.
TEST_CASE_FIXTURE(Fixture, "a whole build is silent, and its verdict says so") {
    Run();
    CHECK(frontEnd.problems.empty());
    CHECK(VerdictOf(*frontEnd.outcome) == BuildVerdict::Whole);
    CHECK(frontEnd.fraction == 1);
    CHECK_FALSE(FileExists(InTree(clsInstallFolder::kMarkName)));
}

TEST_CASE_FIXTURE(Fixture, "what no build made is emptied only when the user was told") {
    const std::string foreign = folder.Write("tree\\letter.txt", "x");
    CHECK(Run() == BuildEnding::Aborted);
    CHECK(Told("1 file that no build made"));
    CHECK(VerdictOf(*frontEnd.outcome) == BuildVerdict::NotBuilt);
    CHECK(frontEnd.questions.empty());
    CHECK(FileExists(foreign));
    inputs.replaceForeign = true;
    CHECK(Run() == BuildEnding::Done);
    CHECK_FALSE(FileExists(foreign));
}

TEST_CASE_FIXTURE(Fixture, "a tree whose build was cut off is known as one") {
    folder.Write("tree\\half.txt", "x");
    folder.Write(std::string("tree\\") + clsInstallFolder::kMarkName, "x");
    CHECK(Run() == BuildEnding::Done);
    CHECK_FALSE(FileExists(InTree("half.txt")));
    CHECK_FALSE(FileExists(InTree(clsInstallFolder::kMarkName)));
}

TEST_CASE_FIXTURE(Fixture, "a catalogue without base components builds nothing") {
    const std::string old = folder.Write("tree\\pebuilder.exe", "x");
    catalogue.baseComponents = {CatalogueEntry()}; // what the editor leaves of an empty list
    CHECK(Run() == BuildEnding::Aborted);
    catalogue.baseComponents.clear();
    CHECK_FALSE(CatalogueRefusal(catalogue).empty());
    CHECK(Run() == BuildEnding::Aborted);
    CHECK(FileExists(old));
}

TEST_CASE_FIXTURE(Fixture, "archive names that leave the program folder are never touched") {
    const std::string victim = folder.Write("victim.zip", "x");
    for (const char* zip : {"..\\victim.zip", "../victim.zip", "..\\program\\..\\victim.zip", "",
                            "ReadMe.txt", "VESKBUILDER.INI"}) {
        CAPTURE(zip);
        frontEnd.problems.clear();
        catalogue.plugins[0].zip = zip;
        catalogue.plugins[0].url = "http://h/x.zip";
        catalogue.plugins[0].crc = clsCRC().CalculateFile(victim);
        CHECK(Run() == BuildEnding::Done);
        CHECK(Told("cannot be an archive's"));
        CHECK(FileExists(inputs.programPath + "readme.txt"));
        CHECK(frontEnd.downloads.empty());
        CHECK(ReadWholeFile(victim) == "x");
    }
}

TEST_CASE_FIXTURE(Fixture, "folder names of the catalogue that leave the tree make nothing") {
    const std::string outside = folder / "outside";
    for (const std::string& value :
         {std::string("..\\..\\outside"), std::string("..\\..\\.."),
          "..\\..\\..\\" + FileNameOf(folder.Path()) + "\\outside",
          std::string("x\\..\\..\\..\\outside"), std::string("C:\\outside")}) {
        CAPTURE(value);
        catalogue.categories = {{value, "100", "Tools"}};
        frontEnd.problems.clear();
        Run();
        CHECK(Told("Plugin\\" + value + ": not made, "));
        CHECK(Told(value + "\\" + value + ".inf: not written, "));
        CHECK(Told("one.zip: not extracted, "));
        CHECK(Told("bootfix: not moved into its category, "));
        CHECK_FALSE(FolderExists(outside));
        CHECK_FALSE(FileExists(outside + ".inf"));
        CHECK_FALSE(FolderExists(folder / "one"));
    }
}

TEST_CASE_FIXTURE(Fixture, "an empty checksum matches nothing") {
    folder.Write("program\\one.zip", "");
    catalogue.plugins[0].crc = "";
    catalogue.baseComponents[0].crc = "";
    RemoveFile(inputs.programPath + "pebuilder3110a.zip");
    CHECK(Run() == BuildEnding::Done);
    CHECK_FALSE(frontEnd.Logged("Skipping download"));
    CHECK(frontEnd.Logged("Warning: one.zip CRC failed. !!!"));
    CHECK(VerdictOf(*frontEnd.outcome) == BuildVerdict::NotUsable);
    CHECK(frontEnd.outcome->reason.find("the test said no") != std::string::npos);
}

TEST_CASE_FIXTURE(Fixture, "an archive with nothing in it is told") {
    catalogue.plugins[0].crc = WriteArchive("one.zip", {});
    CHECK(Run() == BuildEnding::Done);
    CHECK(frontEnd.problems == std::vector<std::string>{"one.zip: not extracted, it is empty"});
    catalogue.baseComponents[0].crc = WriteArchive("pebuilder3110a.zip", {});
    Run();
    CHECK(VerdictOf(*frontEnd.outcome) == BuildVerdict::NotUsable);
}

TEST_CASE_FIXTURE(Fixture, "plug-ins that fall together, or into no category, are told") {
    catalogue.plugins.push_back(catalogue.plugins[0]); // the same archive again loses nothing
    catalogue.plugins[1].cat = "77";
    CHECK(Run() == BuildEnding::Done);
    REQUIRE(frontEnd.problems.size() == 1);
    CHECK(Told("two.zip: not put into a category, the catalogue has no category \"77\""));

    AddPlugin("Other", "one.cab");
    Run();
    CHECK(Told("one.cab: not kept apart from one.zip, both are extracted into "));
}

TEST_CASE_FIXTURE(Fixture, "without a network the mark of a run that was cut off stays") {
    folder.Write("tree\\pebuilder.exe", "x");
    inputs.installFolder.Mark();
    catalogue.baseComponents[0].crc = "BAD";
    network = false;
    CHECK(Run() == BuildEnding::Done);
    CHECK(FileExists(InTree(clsInstallFolder::kMarkName)));
    CHECK(VerdictOf(*frontEnd.outcome) == BuildVerdict::NotBuilt);
}

TEST_CASE_FIXTURE(Fixture, "a failure of the program itself is told, and its log is kept") {
    frontEnd.onLine = [](const std::string& line) {
        if (line == "Plugins:")
            throw std::runtime_error("no more paper");
    };
    CHECK_THROWS_WITH(Run(), "no more paper");
    REQUIRE(frontEnd.outcome);
    CHECK(VerdictOf(*frontEnd.outcome) == BuildVerdict::NotBuilt);
    CHECK(Told("not finished, no more paper"));
}

TEST_CASE_FIXTURE(Fixture, "two builds never share a folder") {
    clsBuildRun first(inputs, catalogue, frontEnd);
    CHECK_THROWS_WITH_AS(clsBuildRun(inputs, catalogue, frontEnd),
                         doctest::Contains("engine_tests.exe, process "), FolderRefused);
}
