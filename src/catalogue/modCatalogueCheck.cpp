#include "catalogue/modCatalogueCheck.h"

#include "base/modText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <string_view>

namespace vesk {

namespace {

using Kind = CatalogueProblemKind;

constexpr std::size_t kReaderBuffer = 255;                  // of values and of section names
constexpr std::size_t kLongestValue = kReaderBuffer - 1;    // and its NUL
constexpr std::size_t kLongestNameList = kReaderBuffer - 1; // and the list's second NUL

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

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

/// Why one address cannot be used; empty when it can. The downloader knows "http://" in lower case
/// only, takes all before the first "/" for the host and always goes to port 80.
std::string AddressFault(std::string_view address) {
    constexpr std::string_view kScheme = "http://";
    const bool hasScheme = address.starts_with(kScheme);
    if (hasScheme)
        address.remove_prefix(kScheme.size());
    const std::string_view host = address.substr(0, address.find('/'));
    if (!hasScheme && address.find("://") != std::string_view::npos)
        return "only \"http://\" in lower case is understood";
    if (host.empty())
        return "there is no host";
    if (host.find('@') != std::string_view::npos)
        return "user names are not understood";
    if (host.find(':') != std::string_view::npos)
        return "port 80 is used and no other can be named";
    const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    return std::ranges::any_of(address, isBlank) ? "it contains a blank" : "";
}

class Checker {
public:
    Checker(const Catalogue& catalogue, const CrcOfArchive& crcOfArchive)
        : catalogue_(catalogue), crcOfArchive_(crcOfArchive) {}

    std::vector<CatalogueProblem> Run(const std::vector<std::string>& sectionNames) {
        CheckSectionNames(sectionNames);
        CheckPrefixes();
        CheckList(catalogue_.baseComponents, "base component ");
        CheckList(catalogue_.plugins, "plug-in ");
        return std::move(problems_);
    }

private:
    void Report(Kind kind, const std::string& sentence) {
        problems_.push_back({kind, entry_, sentence, place_});
    }

    void CheckSectionNames(const std::vector<std::string>& names) {
        std::size_t length = 0;
        for (const std::string& name : names)
            length += name.size() + 1;
        entry_ = "sections";
        if (length > kLongestNameList)
            Report(Kind::SectionNames, "their names take " + std::to_string(length) +
                                           " characters of which only " +
                                           std::to_string(kLongestNameList) + " are read");
    }

    void CheckPrefixes() {
        entry_ = "categories";
        for (const char* prefix : {"100", "200", "300", "500"}) {
            if (!IsCategory(prefix))
                Report(Kind::MissingPrefix, "PE Builder's own plug-ins need a category " +
                                                Quoted(prefix) + ", and there is none");
        }
    }

    void CheckList(const std::vector<CatalogueEntry>& entries, const std::string& what) {
        const bool arePlugins = &entries == &catalogue_.plugins;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const CatalogueEntry& entry = entries[i];
            place_ = EntryPlace{arePlugins ? EntryList::Plugins : EntryList::BaseComponents, i};
            entry_ = what + (entry.name.empty() ? std::to_string(i + 1) : Quoted(entry.name));
            if (entry.name.empty())
                Report(Kind::NoName, "it has no name");
            CheckLengths(entry);
            CheckArchive(entry);
            CheckCrc(entry);
            CheckAddresses(entry);
            if (arePlugins && !IsCategory(entry.cat))
                Report(Kind::UnknownCategory, "there is no category " + Quoted(entry.cat));
        }
    }

    void CheckLengths(const CatalogueEntry& entry) {
        struct Value {
            const char* what;
            const std::string& text;
        };
        for (const Value& value : {Value{"name", entry.name}, Value{"file name", entry.zip},
                                   Value{"address", entry.url}}) {
            if (value.text.size() > kLongestValue)
                Report(Kind::ValueTooLong, std::string("of its ") + value.what + " only " +
                                               std::to_string(kLongestValue) +
                                               " characters are read");
        }
    }

    void CheckArchive(const CatalogueEntry& entry) {
        const std::string extension = LowerCase(ExtensionOf(entry.zip));
        if (entry.zip.empty())
            Report(Kind::ArchiveType, "it names no archive");
        else if (extension != "zip" && extension != "cab")
            Report(Kind::ArchiveType, Quoted(entry.zip) + " is neither .zip nor .cab and would not "
                                                          "be extracted");
        const auto [first, isNew] = owners_.try_emplace(LowerCase(entry.zip), entry_);
        if (!isNew && !entry.zip.empty())
            Report(Kind::DuplicateArchive,
                   Quoted(entry.zip) + " is the archive of " + first->second + " as well");
    }

    void CheckCrc(const CatalogueEntry& entry) {
        constexpr std::size_t kLongestCrc = 8;
        const bool isNumber = IsHexadecimal(entry.crc);
        const std::string canonical = isNumber ? CanonicalCrc(entry.crc) : "";
        if (!isNumber || canonical.size() > kLongestCrc)
            Report(Kind::CrcForm, Quoted(entry.crc) + " is no CRC-32");
        else if (canonical != entry.crc)
            Report(Kind::CrcForm, "the CRC-32 " + Quoted(entry.crc) + " never matches, write " +
                                      Quoted(canonical));
        const std::string present =
            crcOfArchive_ && !entry.zip.empty() ? crcOfArchive_(entry.zip) : "";
        if (!present.empty() && present != canonical)
            Report(Kind::CrcDiffers,
                   Quoted(entry.zip) + " is present with the CRC-32 " + Quoted(present));
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

    [[nodiscard]] bool IsCategory(const std::string& key) const {
        return std::ranges::find(catalogue_.categories, key, &CategoryRecord::key) !=
               catalogue_.categories.end();
    }

    const Catalogue& catalogue_;
    const CrcOfArchive& crcOfArchive_;
    std::vector<CatalogueProblem> problems_;
    std::string entry_;                         ///< What is being looked at.
    std::optional<EntryPlace> place_;           ///< Where it is, once entries are looked at.
    std::map<std::string, std::string> owners_; ///< Archive in lower case to its first entry.
};

} // namespace

std::vector<CatalogueProblem> CheckCatalogue(const Catalogue& catalogue,
                                             const CrcOfArchive& crcOfArchive,
                                             const std::vector<std::string>& sectionNames) {
    return Checker(catalogue, crcOfArchive).Run(sectionNames);
}

} // namespace vesk
