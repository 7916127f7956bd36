#include "catalogue/modCatalogueCheck.h"

#include "archive/modArchiveName.h"
#include "archive/modMemberName.h"
#include "base/modText.h"
#include "catalogue/modAddress.h"
#include "catalogue/modCategoryCheck.h"
#include "catalogue/modIniText.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace vesk {

namespace {

using Kind = CatalogueProblemKind;

constexpr std::size_t kMostContentFaults = 5; // of one archive

bool IsHexadecimal(std::string_view text) {
    return !text.empty() &&
           text.find_first_not_of("0123456789ABCDEFabcdef") == std::string_view::npos;
}

/// The form in which a checksum is computed, and with which it is compared as text.
std::string CanonicalCrc(const std::string& crc) {
    const std::string upper = UpperCase(crc);
    const std::size_t first = std::min(upper.find_first_not_of('0'), upper.size() - 1);
    return upper.substr(first);
}

/// Why a checksum matches no file as it is written; empty when it can match one.
std::string CrcFormFault(const std::string& crc) {
    constexpr std::size_t kLongestCrc = 8;
    if (crc.empty())
        return "it has no CRC-32, and without one no build installs it";
    const bool isNumber = IsHexadecimal(crc);
    const std::string canonical = isNumber ? CanonicalCrc(crc) : "";
    if (!isNumber || canonical.size() > kLongestCrc)
        return Quoted(crc) + " is not a CRC-32: up to eight hexadecimal digits are expected";
    if (canonical != crc)
        return "the CRC-32 " + Quoted(crc) + " never matches: it has to be written " +
               Quoted(canonical);
    return {};
}

/// A list that became empty keeps one entry without anything in it.
bool IsPlaceholder(const CatalogueEntry& entry) {
    return entry == CatalogueEntry();
}

class Checker {
public:
    Checker(const Catalogue& catalogue, const ArchiveSource& archives)
        : catalogue_(catalogue), archives_(archives) {
        for (const CategoryRecord& category : catalogue.categories)
            folderOfKey_.try_emplace(category.key, category.value);
    }

    CatalogueCheck Run(const std::vector<std::string>& sectionNames) {
        CheckSectionNames(sectionNames);
        CheckInstallFolder();
        CheckCategories();
        CheckList(EntryList::BaseComponents);
        CheckList(EntryList::Plugins);
        return std::move(check_);
    }

private:
    void Report(Kind kind, const std::string& sentence) {
        check_.problems.push_back({kind, about_, sentence, place_});
    }
    void ReportIfAny(Kind kind, const std::string& sentence) {
        if (!sentence.empty())
            Report(kind, sentence);
    }

    void CheckSectionNames(const std::vector<std::string>& names) {
        std::size_t length = 0;
        for (const std::string& name : names)
            length += name.size() + 1;
        about_ = "sections";
        if (length > kLongestSectionList)
            Report(Kind::SectionNames, "their names take " + std::to_string(length) +
                                           " characters of which only " +
                                           std::to_string(kLongestSectionList) + " are read");
    }

    void CheckInstallFolder() {
        about_ = "installation folder";
        const std::string& folder = catalogue_.installFolder;
        if (folder.empty())
            Report(Kind::InstallFolder, "there is none");
        else if (!PathInside("", folder))
            Report(Kind::InstallFolder, Quoted(folder) + " is not a valid folder name");
        CheckText("name", folder);
    }

    void CheckCategories() {
        about_ = "categories";
        for (const char* prefix : {"100", "200", "300", "500"}) {
            if (!folderOfKey_.contains(prefix))
                Report(Kind::MissingPrefix, "PE Builder's own plug-ins need a category " +
                                                Quoted(prefix) + ", and there is none");
        }
        const std::vector<std::string> faults = CategoryFaults(catalogue_.categories);
        for (std::size_t i = 0; i < faults.size(); ++i) {
            const std::string& key = catalogue_.categories[i].key;
            about_ = "category " + (key.empty() ? std::to_string(i + 1) : Quoted(key));
            ReportIfAny(Kind::Category, faults[i]);
        }
    }

    void CheckList(EntryList list) {
        const std::vector<CatalogueEntry>& entries = EntriesOf(catalogue_, list);
        const bool arePlugins = list == EntryList::Plugins;
        about_ = arePlugins ? "plug-ins" : "base components";
        place_.reset();
        if (!arePlugins && (entries.empty() || IsPlaceholder(entries.front())))
            Report(Kind::NoComponents, "there is none, so there is nothing to build");
        if (entries.size() > kMostLines)
            Report(Kind::TooMany, "there are " + std::to_string(entries.size()) +
                                      ", and the wizard's list overflows after " +
                                      std::to_string(kMostLines));
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (IsPlaceholder(entries[i]))
                continue;
            place_ = EntryPlace{list, i};
            const std::string& name = entries[i].name;
            about_ = (arePlugins ? "plug-in " : "base component ") +
                     (name.empty() ? std::to_string(i + 1) : Quoted(name));
            CheckEntry(entries[i], *place_);
        }
    }

    void CheckEntry(const CatalogueEntry& entry, const EntryPlace& place) {
        if (entry.name.empty())
            Report(Kind::NoName, "it has no name");
        CheckText("name", entry.name);
        CheckText("file name", entry.zip);
        CheckText("category", entry.cat);
        CheckText("address", entry.url);
        CheckText("CRC-32", entry.crc);
        const bool isFirst = CheckArchiveName(entry, place);
        ReportIfAny(Kind::CrcForm, CrcFormFault(entry.crc));
        CheckArchive(entry, place, isFirst);
        CheckAddresses(entry);
        if (place.list == EntryList::Plugins)
            CheckFolder(entry);
    }

    /// Whether the file gives a text back as it is.
    void CheckText(const std::string& what, const std::string& value) {
        if (value.size() > kLongestIniValue)
            Report(Kind::ValueTooLong, "its " + what + " has " + std::to_string(value.size()) +
                                           " characters of which only " +
                                           std::to_string(kLongestIniValue) + " are read");
        else if (IsInQuotes(value))
            Report(Kind::ValueForm, "the quotes around its " + what + " are lost in the file");
    }

    /// @return whether it is the first entry with this archive
    bool CheckArchiveName(const CatalogueEntry& entry, const EntryPlace& place) {
        if (IsMisnamedPeBuilder(entry, place))
            Report(Kind::FirstArchive, "the first one's archive has to be " +
                                           Quoted(kFirstArchiveName) + ", here it is " +
                                           Quoted(entry.zip));
        if (entry.zip.empty()) {
            Report(Kind::ArchiveType, "it names no archive");
            return false;
        }
        if (ArchiveKindOf(entry.zip) == ArchiveKind::Neither)
            Report(Kind::ArchiveType, Quoted(entry.zip) + " is neither .zip nor .cab and would not "
                                                          "be extracted");
        if (const std::string fault = ArchiveNameFault(entry.zip); !fault.empty())
            Report(Kind::ArchiveName,
                   Quoted(entry.zip) + " is " + fault + ": it is neither downloaded nor extracted");
        const auto [first, isNew] = owners_.try_emplace(LowerCase(entry.zip), about_);
        if (!isNew)
            Report(Kind::DuplicateArchive,
                   Quoted(entry.zip) + " is the archive of " + first->second + " as well");
        return isNew;
    }

    /// @param isFirst entry with this archive, whose content is tested once
    void CheckArchive(const CatalogueEntry& entry, const EntryPlace& place, bool isFirst) {
        if (!archives_.factsOf || entry.zip.empty())
            return;
        const ArchiveFacts facts = archives_.factsOf(entry.zip);
        const ArchiveState state = JudgeArchive(entry, place, facts);
        if (state == ArchiveState::Good)
            ++check_.archivesGood;
        if (state == ArchiveState::ToDownload)
            ++check_.archivesToDownload;
        if (state == ArchiveState::Missing)
            Report(Kind::ArchiveMissing, MissingWords(entry));
        if (!facts.isThere)
            return;
        CheckPresent(entry, facts.crc.value_or(""));
        if (!facts.sha256Fault.empty())
            Report(Kind::CrcDiffers, Quoted(entry.zip) + ": " + facts.sha256Fault);
        if (isFirst && archives_.contentFaultsOf)
            ReportContent(entry, archives_.contentFaultsOf(entry.zip));
    }

    static std::string MissingWords(const CatalogueEntry& entry) {
        const std::string start = Quoted(entry.zip) + " is not in the program folder, and ";
        return start + (entry.url.empty() ? "there is no address to download it from"
                                          : "of the base components a build downloads only the "
                                            "first");
    }

    void CheckPresent(const CatalogueEntry& entry, const std::string& found) {
        if (found.empty())
            Report(Kind::CrcDiffers, Quoted(entry.zip) + " is empty or cannot be read");
        else if (!IsHexadecimal(entry.crc))
            Report(Kind::CrcDiffers, Quoted(entry.zip) + " has the CRC-32 " + Quoted(found));
        else if (CanonicalCrc(entry.crc) != found)
            Report(Kind::CrcDiffers, Quoted(entry.zip) + ": CRC-32 " + Quoted(entry.crc) +
                                         " expected, " + Quoted(found) + " found");
    }

    void ReportContent(const CatalogueEntry& entry, const std::vector<std::string>& faults) {
        for (std::size_t i = 0; i < std::min(faults.size(), kMostContentFaults); ++i)
            Report(Kind::ArchiveContent, Quoted(entry.zip) + ": " + faults[i]);
        if (faults.size() > kMostContentFaults)
            Report(Kind::ArchiveContent, Quoted(entry.zip) + ": and " +
                                             std::to_string(faults.size() - kMostContentFaults) +
                                             " more that would not be extracted");
    }

    void CheckAddresses(const CatalogueEntry& entry) {
        const std::vector<std::string> addresses = Split(entry.url, ',');
        for (const std::string& piece : addresses) {
            const std::string address = TrimBlanks(piece);
            const std::string fault = AddressFault(address);
            if (!fault.empty())
                Report(Kind::Address,
                       "the address " + Quoted(address) + " cannot be used: " + fault);
        }
        constexpr std::size_t kPair = 2;
        if (addresses.size() == kPair)
            Report(Kind::Address, "the second of only two addresses is never tried");
    }

    void CheckFolder(const CatalogueEntry& entry) {
        const auto category = folderOfKey_.find(entry.cat);
        if (category == folderOfKey_.end())
            Report(Kind::UnknownCategory, "there is no category " + Quoted(entry.cat));
        const std::string parent = category == folderOfKey_.end() ? "" : category->second + "\\";
        const std::string folder = parent + BaseNameOf(entry.zip);
        const auto [first, isNew] =
            folders_.try_emplace(LowerCase(folder), std::pair(about_, LowerCase(entry.zip)));
        // One archive twice is reported already.
        if (!isNew && !entry.zip.empty() && first->second.second != LowerCase(entry.zip))
            Report(Kind::SameFolder, "it is extracted into the folder " + Quoted(folder) +
                                         ", and so is " + first->second.first);
    }

    const Catalogue& catalogue_;
    const ArchiveSource& archives_;
    CatalogueCheck check_;
    std::string about_;               ///< What is being looked at.
    std::optional<EntryPlace> place_; ///< Where it is, once entries are looked at.
    std::map<std::string, std::string> folderOfKey_;
    std::map<std::string, std::string> owners_; ///< Archive in lower case to its first entry.

    /// Folder in lower case to the first plug-in in it, and that one's archive.
    std::map<std::string, std::pair<std::string, std::string>> folders_;
};

std::string Counted(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

} // namespace

std::string CatalogueCheck::Verdict() const {
    std::string text = "No faults found: the entries are complete, and " +
                       Counted(archivesGood, "archive") + (archivesGood == 1 ? " is" : " are") +
                       " present, with the right CRC-32 and undamaged members.";
    if (archivesToDownload > 0)
        text += " Not checked: the " + Counted(archivesToDownload, "archive") +
                " that a build downloads.";
    return text;
}

CatalogueCheck CheckCatalogue(const Catalogue& catalogue, const ArchiveSource& archives,
                              const std::vector<std::string>& sectionNames) {
    return Checker(catalogue, archives).Run(sectionNames);
}

} // namespace vesk
