#pragma once

#include "TestFolder.h"
#include "archive/ZipBuilder.h"
#include "catalogue/modCatalogueFile.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace vesk::test {

/// A fresh program folder with the delivered wizard and a small catalogue: two base components (the
/// first one locked), three plug-ins (the last one locked and ticked).
class ProgramFolder {
public:
    ProgramFolder() {
        const char* const program = std::getenv("VESK_WIZARD");
        REQUIRE_MESSAGE(program, "VESK_WIZARD names the wizard");
        CreateFolderPath(folder_ / "program");
        CopyFileOver(program, Wizard());
        folder_.Write("program\\readme.txt", "Read me.");
        catalogue.installFolder = "VeskUiTest";
        catalogue.installPathFlag = "0";
        catalogue.categories = {{"100_tools", "100", "Tools"}};
        AddBase("PE Builder", "pebuilder3110a.zip",
                {TestMember::Stored("pebuilder.exe", "stand-in")});
        catalogue.baseComponents.front().lock = true;
        AddBase("Extras", "extras.zip", {TestMember::Stored("extra.txt", "extra")});
        AddPlugin("Alpha", true, false);
        AddPlugin("Beta", false, false);
        AddPlugin("Gamma", true, true);
        Save();
    }

    /// Writes the catalogue again, changed; to be called before the wizard starts.
    void Save() const { SaveCatalogue(Path(), catalogue); }

    [[nodiscard]] std::string Path() const { return folder_ / "program\\"; }
    [[nodiscard]] std::string Wizard() const { return Path() + "veskbuilder.exe"; }
    [[nodiscard]] std::string Tree() const { return folder_ / "tree"; }
    [[nodiscard]] const TestFolder& Folder() const { return folder_; }

    /// Puts the delivered console program into the folder. @return its path
    [[nodiscard]] std::string Console() const {
        const char* const program = std::getenv("VESK_CONSOLE");
        REQUIRE_MESSAGE(program, "VESK_CONSOLE names the console program");
        CopyFileOver(program, Path() + "veskbuild.exe");
        return Path() + "veskbuild.exe";
    }

    /// Writes an archive into the program folder. @return its CRC-32 as catalogues hold it
    [[nodiscard]] std::string WriteArchive(const std::string& name,
                                           const std::vector<TestMember>& members) const {
        return clsCRC().CalculateFile(folder_.Write("program\\" + name, MakeZip(members)));
    }

    void AddBase(const std::string& name, const std::string& zip,
                 const std::vector<TestMember>& members) {
        catalogue.baseComponents.push_back(
            {name, zip, "", true, false, "", WriteArchive(zip, members)});
    }

    Catalogue catalogue;

private:
    void AddPlugin(const std::string& name, bool enabled, bool lock) {
        const std::string zip = name + ".zip";
        const std::string crc = WriteArchive(
            zip, {TestMember::Stored(name + ".inf", "[Version]\r\n[PEBuilder]\r\nName=\"" + name +
                                                        "\"\r\nEnable=1\r\n")});
        catalogue.plugins.push_back({name, zip, "100", enabled, lock, "", crc});
    }

    TestFolder folder_;
};

} // namespace vesk::test
