#include "catalogue/modCatalogueFile.h"

#include "base/Failure.h"
#include "base/Problem.h"
#include "base/RunTimeError.h"
#include "base/modDate.h"
#include "base/modFile.h"
#include "base/modSpecialFolder.h"
#include "base/modText.h"
#include "base/modWide.h"
#include "catalogue/clsINI.h"
#include "catalogue/modCatalogueFaults.h"
#include "catalogue/modCatalogueText.h"
#include "catalogue/modCategoryCaption.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <string_view>

namespace vesk {

namespace {

constexpr const char* kWriteAnew = "veskbuilder.exe -setup shows what was read and can write the "
                                   "file anew.";

/// One section read by position: key 0, 1, 2 ... whatever their names.
class PositionalSection {
public:
    explicit PositionalSection(const IniSection& section) : section_(section) {}

    [[nodiscard]] std::size_t KeyCount() const { return section_.keys.size(); }

    [[nodiscard]] std::string Key(std::size_t index) const {
        // One past the last key is the list's empty end element: its value reads as empty.
        if (index > KeyCount())
            throw Failure(kSubscriptOutOfRange, "LoadCatalogue",
                          "section [" + section_.name + "] ends in the middle of an entry");
        return index < KeyCount() ? section_.keys[index].name : std::string();
    }

    [[nodiscard]] std::string Text(std::size_t index) const {
        return Key(index).empty() ? std::string() : section_.keys[index].value;
    }

    [[nodiscard]] bool Boolean(std::size_t index) const {
        const std::string text = Text(index);
        if (const auto value = ToBoolean(text))
            return *value;
        throw Failure(kTypeMismatch, "LoadCatalogue",
                      "section [" + section_.name + "], key " + Key(index) + ": \"" + text +
                          "\" is neither 1 nor 0");
    }

private:
    const IniSection& section_;
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

constexpr std::string_view kUtf8("\xEF\xBB\xBF");

/// Some programs write such files in Unicode; the profile functions accept them anyway.
std::string InCodePage(std::string text) {
    if (text.starts_with(kUtf16Mark)) {
        std::wstring wide((text.size() - kUtf16Mark.size()) / sizeof(wchar_t), L'\0');
        std::memcpy(wide.data(), text.data() + kUtf16Mark.size(), wide.size() * sizeof(wchar_t));
        return Narrowed(wide);
    }
    if (!text.starts_with(kUtf8))
        return text;
    text.erase(0, kUtf8.size());
    std::wstring wide(text.size(), L'\0');
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                            static_cast<int>(wide.size()))));
    return Narrowed(wide);
}

/// Names that take two bytes a character may hold what looks like a bracket.
bool IsOneByteText(std::string_view text) {
    CPINFO info{};
    return (GetCPInfo(CP_ACP, &info) != 0 && info.MaxCharSize == 1) ||
           std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// @param bytes the content of the file
IniText ParseIniFile(const std::string& path, const std::string& bytes) {
    const std::string text = InCodePage(bytes);
    IniText file = ParseIni(text);
    // Longer paths are another matter to the profile functions.
    const bool isAnsi = text == bytes && IsOneByteText(text) && path.size() < MAX_PATH;
    file.isPlain &= isAnsi;
    file.linesArePlain &= isAnsi;
    return file;
}

/// Each call of the profile functions reads the whole file: so much may be read in that way, which
/// takes seconds.
constexpr std::size_t kMostReadAgain = std::size_t{512} << 20;

/// The profile functions read the whole file for every key. Where nobody could read the text in
/// another way, once is enough; where that would take too long, it has to be.
/// @param size of the file, in bytes
/// @param fault receives that it had to be, unless something else is wrong with the file
std::vector<IniSection> SectionsOf(const std::string& path, const IniText& file, std::size_t size,
                                   std::string& fault) {
    if (file.isPlain)
        return file.sections;
    try {
        return ReadSectionsThroughSystem(path, file.linesArePlain ? &file : nullptr,
                                         std::min(kMostAsked, kMostReadAgain / size));
    } catch (const Failure& failure) {
        if (fault.empty())
            fault = failure.what();
        return file.sections;
    }
}

/// Values by section and key, both in lower case.
using Values = std::map<std::string, std::map<std::string, std::string>>;

Values ValuesOf(const IniText& file) {
    Values values;
    for (const IniSection& section : file.sections) {
        for (const IniKey& key : section.keys)
            values[LowerCase(section.name)].try_emplace(LowerCase(key.name), key.value);
    }
    return values;
}

void FillCatalogue(const std::vector<IniSection>& sections, Catalogue& catalogue) {
    if (sections.empty())
        return;
    catalogue = Catalogue();
    const PositionalSection install(sections[0]);
    catalogue.installFolder = install.Text(0);
    catalogue.installPathFlag = install.Text(1);
    DeriveInstallPaths(catalogue, SpecialFolderPath(SpecialFolder::ProgramFiles));
    // By position and not by name: renamed sections are read as well.
    if (sections.size() > 1)
        ReadEntries(PositionalSection(sections[1]), false, catalogue.baseComponents);
    if (sections.size() > 2)
        ReadEntries(PositionalSection(sections[2]), true, catalogue.plugins);
    if (sections.size() > 3)
        ReadCategories(PositionalSection(sections[3]), catalogue);
}

/// Why the catalogue's file cannot be read; a state of Whole when it can.
/// @param bytes receives its content
CatalogueLoad ReadOrExplain(const std::string& path, std::string& bytes) {
    const auto absent = [&](const std::string& why, const std::string& advice, bool isThere) {
        const std::string fault = path + ": " + why;
        return CatalogueLoad{CatalogueState::Absent, fault + ". " + advice, isThere, fault};
    };
    if (path.size() >= MAX_PATH)
        return absent("the path is longer than the 259 characters that can be used",
                      "Move the program to a folder with a shorter path.", true);
    const PathState state = StateOf(path);
    if (state == PathState::Nothing)
        return absent("there is no such file", "Start veskbuilder.exe -setup to make one.", false);
    if (state == PathState::Folder)
        return absent("it is a folder",
                      "Remove it, and start veskbuilder.exe -setup to make a file.", true);
    try {
        bytes = ReadFileIfThere(path);
        return {};
    } catch (const Failure& failure) {
        return absent("it cannot be read, " + ReasonOf(failure),
                      "Check who may read it and which program has it open.", true);
    }
}

} // namespace

std::vector<IniSection> ReadSectionsThroughSystem(const std::string& path, const IniText* known,
                                                  std::size_t mostAsked) {
    const clsINI ini(path);
    Values values = known == nullptr ? Values() : ValuesOf(*known);
    std::vector<IniSection> sections;
    std::vector<std::string> names = ini.GetAllSections();
    names.pop_back(); // the empty element that ends a list
    std::size_t asked = 0;
    for (const std::string& name : names) {
        IniSection& section = sections.emplace_back(IniSection{name, {}});
        const auto& ofSection = values[LowerCase(name)];
        std::vector<std::string> keys = ini.GetAllKeys(name);
        keys.pop_back();
        asked += 1 + (known == nullptr ? keys.size() : 0);
        if (asked > mostAsked)
            throw Failure(ERROR_FILE_TOO_LARGE, "ReadSectionsThroughSystem",
                          "it is too large to see whether Windows reads it differently from what "
                          "it says");
        for (const std::string& key : keys) {
            const auto found = ofSection.find(LowerCase(key));
            section.keys.push_back(
                {key, found != ofSection.end() ? found->second : ini.GetStringValue(name, key)});
        }
    }
    return sections;
}

CatalogueLoad LoadCatalogueReporting(const std::string& programPath, Catalogue& catalogue) {
    const std::string path = programPath + kCatalogueFileName;
    std::string bytes;
    if (CatalogueLoad load = ReadOrExplain(path, bytes); load.state != CatalogueState::Whole)
        return load;
    const IniText file = ParseIniFile(path, bytes);
    if (file.sections.empty() && file.lost.empty())
        return {CatalogueState::Absent, path + ": it is empty. " + kWriteAnew, true,
                path + ": it is empty"};
    std::string fault = CatalogueFault(file);
    try {
        const std::vector<IniSection> sections = SectionsOf(path, file, bytes.size(), fault);
        FillCatalogue(sections, catalogue);
        if (fault.empty() && sections != file.sections)
            fault = "Windows reads it differently from what it says";
    } catch (const Failure& failure) {
        if (fault.empty())
            fault = failure.what();
    }
    const std::string surplus = CatalogueSurplus(file);
    if (fault.empty())
        return {.sentence = {}, .surplus = surplus};
    fault = path + ": " + fault;
    return {CatalogueState::Partial, fault + ". " + kWriteAnew, true, fault, surplus};
}

void DeriveInstallPaths(Catalogue& catalogue, const std::string& programFilesFolder) {
    constexpr std::size_t kDriveLength = 2; // "C:"
    catalogue.installRoot = catalogue.installPathFlag == "0"
                                ? programFilesFolder.substr(0, kDriveLength)
                                : programFilesFolder;
    catalogue.pluginFolder = catalogue.installRoot + "\\" + catalogue.installFolder + "\\Plugin";
}

void SaveCatalogue(const std::string& programPath, const Catalogue& catalogue) {
    WriteCompleteFile(programPath + kCatalogueFileName, CatalogueText(catalogue, GeneralDate()));
}

} // namespace vesk
