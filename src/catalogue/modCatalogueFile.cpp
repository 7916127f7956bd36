#include "catalogue/modCatalogueFile.h"

#include "archive/clsCRC.h"
#include "base/Failure.h"
#include "base/modDate.h"
#include "base/modFile.h"
#include "base/modSpecialFolder.h"
#include "base/modText.h"
#include "catalogue/clsINI.h"
#include "catalogue/modCatalogueText.h"

#include <windows.h>

namespace vesk {

namespace {

constexpr std::uint32_t kSubscriptOutOfRange = 9;
constexpr std::uint32_t kTypeMismatch = 13;

/// One section read by position: key 0, 1, 2 ... whatever their names.
class PositionalSection {
public:
    PositionalSection(const clsINI& ini, std::string section)
        : ini_(ini), section_(std::move(section)), keys_(ini.GetAllKeys(section_)) {}

    /// Without the empty element that ends the list.
    [[nodiscard]] std::size_t KeyCount() const { return keys_.size() - 1; }

    [[nodiscard]] const std::string& Key(std::size_t index) const {
        // One past the last key is the list's empty end element: its value reads as empty.
        if (index >= keys_.size())
            throw Failure(kSubscriptOutOfRange, "LoadCatalogue",
                          "section [" + section_ + "] ends in the middle of an entry");
        return keys_[index];
    }

    [[nodiscard]] std::string Text(std::size_t index) const {
        return ini_.GetStringValue(section_, Key(index));
    }

    [[nodiscard]] bool Boolean(std::size_t index) const {
        const std::string text = Text(index);
        if (const auto value = ToBoolean(text))
            return *value;
        throw Failure(kTypeMismatch, "LoadCatalogue",
                      "section [" + section_ + "], key " + Key(index) + ": \"" + text +
                          "\" is neither 1 nor 0");
    }

private:
    const clsINI& ini_;
    std::string section_;
    std::vector<std::string> keys_;
};

/// Entries of six keys, or of seven with a category. Fields go into the list as they are read, so
/// that what stands before a failure is kept.
void ReadEntries(const PositionalSection& section, bool withCategory,
                 std::vector<CatalogueEntry>& entries) {
    const std::size_t step = withCategory ? 7 : 6;
    for (std::size_t j = 0; j < section.KeyCount(); j += step) {
        CatalogueEntry& entry = entries.emplace_back();
        std::size_t key = j;
        entry.name = section.Text(key++);
        entry.zip = section.Text(key++);
        if (withCategory)
            entry.cat = section.Text(key++);
        entry.enabled = section.Boolean(key++);
        entry.lock = section.Boolean(key++);
        entry.url = section.Text(key++);
        entry.crc = section.Text(key);
    }
}

void ReadCategories(const PositionalSection& section, Catalogue& catalogue) {
    catalogue.showCategories = section.Boolean(0);
    for (std::size_t k = 1; k < section.KeyCount(); ++k) {
        CategoryRecord& category = catalogue.categories.emplace_back();
        category.key = section.Key(k);
        category.value = section.Text(k);
        category.caption = CategoryCaption(category.value, category.key);
    }
}

/// First letter of each word upper case, the rest lower case, in the system's code page.
std::string ProperCase(std::string text) {
    CharLowerBuffA(text.data(), static_cast<DWORD>(text.size()));
    constexpr std::string_view kSeparators(" \t\n\v\f\r\0", 7);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == 0 || kSeparators.find(text[i - 1]) != std::string_view::npos)
            CharUpperBuffA(&text[i], 1);
    }
    return text;
}

} // namespace

void LoadCatalogue(const std::string& programPath, Catalogue& catalogue) {
    const clsINI ini(programPath + kCatalogueFileName);
    const std::vector<std::string> sections = ini.GetAllSections();
    if (sections.size() < 2)
        return;
    catalogue = Catalogue();
    const PositionalSection install(ini, sections[0]);
    catalogue.installFolder = install.Text(0);
    catalogue.installPathFlag = install.Text(1);
    DeriveInstallPaths(catalogue, SpecialFolderPath(SpecialFolder::ProgramFiles));
    // By position and not by name: renamed sections are read all the same.
    for (std::size_t i = 1; i + 1 < sections.size(); ++i) {
        const PositionalSection section(ini, sections[i]);
        if (i == 1)
            ReadEntries(section, false, catalogue.baseComponents);
        else if (i == 2)
            ReadEntries(section, true, catalogue.plugins);
        else if (i == 3)
            ReadCategories(section, catalogue);
    }
}

CatalogueLoad LoadCatalogueReporting(const std::string& programPath, Catalogue& catalogue) {
    const std::string path = programPath + kCatalogueFileName;
    constexpr std::size_t kSections = 4;
    try {
        if (!FileExists(path))
            return {CatalogueState::Absent, path + ": there is no such file"};
        LoadCatalogue(programPath, catalogue);
        const std::size_t sections = clsINI(path).GetAllSections().size() - 1;
        if (sections < kSections)
            return {CatalogueState::Partial,
                    path + ": it has " + std::to_string(sections) +
                        " sections where installation, base components, plug-ins and categories "
                        "are expected"};
    } catch (const Failure& failure) {
        return {CatalogueState::Partial, path + ": " + failure.what()};
    }
    return {};
}

void DeriveInstallPaths(Catalogue& catalogue, const std::string& programFilesFolder) {
    constexpr std::size_t kDriveLength = 2; // "C:"
    catalogue.installRoot = catalogue.installPathFlag == "0"
                                ? programFilesFolder.substr(0, kDriveLength)
                                : programFilesFolder;
    catalogue.pluginFolder = catalogue.installRoot + "\\" + catalogue.installFolder + "\\Plugin";
}

std::string CategoryCaption(const std::string& value, const std::string& key) {
    return ProperCase(TrimBlanks(ReplaceAll(ReplaceAll(value, "_", " "), key, " ")));
}

CrcOfArchive ArchivesIn(const std::string& programPath) {
    return [programPath](const std::string& archive) {
        return clsCRC().CalculateFile(programPath + archive);
    };
}

std::vector<CatalogueProblem> CheckCatalogueFile(const std::string& programPath,
                                                 const Catalogue& catalogue) {
    return CheckCatalogue(catalogue, ArchivesIn(programPath),
                          SectionNames(ReadWholeFile(programPath + kCatalogueFileName)));
}

void SaveCatalogue(const std::string& programPath, const Catalogue& catalogue) {
    WriteCompleteFile(programPath + kCatalogueFileName, CatalogueText(catalogue, GeneralDate()));
}

} // namespace vesk
