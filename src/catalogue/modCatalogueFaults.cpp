#include "catalogue/modCatalogueFaults.h"

#include "base/modText.h"
#include "catalogue/modCatalogueText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace vesk {

namespace {

constexpr std::size_t kSections = 4;
constexpr std::array<std::string_view, 2> kInstallKeys{"Folder", "Path"};
constexpr std::array<std::string_view, 6> kBaseKeys{"Name", "Zip", "Enabled", "Lock", "Url", "CRC"};
constexpr std::array<std::string_view, 7> kPluginKeys{"Name", "Zip", "Cat", "Enabled",
                                                      "Lock", "Url", "CRC"};

std::string Place(const IniSection& section, const IniKey& key) {
    return "section [" + section.name + "], key " + key.name + ": ";
}

std::string LengthFault(const IniSection& section) {
    if (KeyListLength(section) > kLongestKeyList)
        return "the list of keys of section [" + section.name + "] is longer than " +
               std::to_string(kLongestKeyList) + " characters: the rest is not read";
    const auto tooLong = std::ranges::find_if(
        section.keys, [](const IniKey& key) { return key.value.size() > kLongestIniValue; });
    if (tooLong == section.keys.end())
        return {};
    return Place(section, *tooLong) + "of the value's " + std::to_string(tooLong->value.size()) +
           " characters only " + std::to_string(kLongestIniValue) + " are read";
}

std::string BooleanFault(const IniSection& section, const IniKey& key) {
    return ToBoolean(key.value) ? ""
                                : Place(section, key) + Quoted(key.value) + " is neither 1 nor 0";
}

/// True for a name that the writer gives to one of a section's keys, wherever it stands.
bool IsWritersName(std::string_view name, std::span<const std::string_view> stems) {
    const std::size_t digits = name.find_last_not_of("0123456789") + 1;
    return digits < name.size() && std::ranges::any_of(stems, [&](std::string_view stem) {
               return EqualNoCase(name.substr(0, digits), stem);
           });
}

/// Keys may have other names than the writer's; but the writer's, at another place, means that
/// something is missing or in disorder.
std::string PlaceFault(const IniSection& section, const IniKey& key, const std::string& expected) {
    return Place(section, key) + "it is where " + expected + " is expected";
}

std::string EntriesFault(const IniSection& section, std::span<const std::string_view> stems) {
    const std::size_t step = stems.size();
    for (std::size_t i = 0; i < section.keys.size(); ++i) {
        const IniKey& key = section.keys[i];
        const std::string_view stem = stems[i % step];
        const std::string expected = std::string(stem) + std::to_string(i / step);
        if (!EqualNoCase(key.name, expected) && IsWritersName(key.name, stems))
            return PlaceFault(section, key, expected);
        if (stem == "Enabled" || stem == "Lock") {
            if (std::string fault = BooleanFault(section, key); !fault.empty())
                return fault;
        }
    }
    if (section.keys.size() % step != 0)
        return "section [" + section.name + "] ends in the middle of an entry";
    return {};
}

std::string InstallFault(const IniSection& section) {
    for (std::size_t i = 0; i < std::min(section.keys.size(), kInstallKeys.size()); ++i) {
        const IniKey& key = section.keys[i];
        if (!EqualNoCase(key.name, kInstallKeys.at(i)) &&
            std::ranges::any_of(kInstallKeys,
                                [&](std::string_view name) { return EqualNoCase(key.name, name); }))
            return PlaceFault(section, key, std::string(kInstallKeys.at(i)));
    }
    if (section.keys.size() < kInstallKeys.size())
        return "section [" + section.name + "] has " + std::to_string(section.keys.size()) +
               " keys where the folder and the path are expected";
    return {};
}

std::string CategoriesFault(const IniSection& section) {
    if (section.keys.empty())
        return "section [" + section.name + "] has no key " + std::string(kShowCategoriesKey);
    const auto show = std::ranges::find_if(
        section.keys, [](const IniKey& key) { return EqualNoCase(key.name, kShowCategoriesKey); });
    if (show != section.keys.end() && show != section.keys.begin())
        return PlaceFault(section, section.keys.front(), std::string(kShowCategoriesKey));
    return BooleanFault(section, section.keys.front());
}

std::string SectionFault(const std::vector<IniSection>& sections, std::size_t index) {
    const IniSection& section = sections[index];
    if (std::string fault = LengthFault(section); !fault.empty())
        return fault;
    switch (index) {
    case 0:
        return InstallFault(section);
    case 1:
        return EntriesFault(section, kBaseKeys);
    case 2:
        return EntriesFault(section, kPluginKeys);
    default:
        return CategoriesFault(section);
    }
}

} // namespace

std::string CatalogueFault(const IniText& file) {
    const std::vector<IniSection>& sections = file.sections;
    if (const std::size_t length = SectionListLength(sections); length > kLongestSectionList)
        return "the list of sections has " + std::to_string(length) +
               " characters, of which only " + std::to_string(kLongestSectionList) + " are read";
    if (!file.lost.empty())
        return file.lost;
    if (sections.size() < kSections)
        return "it has " + std::to_string(sections.size()) + " section" +
               (sections.size() == 1 ? "" : "s") +
               " where installation, base components, plug-ins and categories are expected";
    for (std::size_t i = 0; i < kSections; ++i) {
        if (std::string fault = SectionFault(sections, i); !fault.empty())
            return fault;
    }
    return {};
}

std::string CatalogueSurplus(const IniText& file) {
    if (file.sections.size() > kSections)
        return "section [" + file.sections[kSections].name + "]";
    if (!file.sections.empty() && file.sections[0].keys.size() > kInstallKeys.size())
        return "key " + file.sections[0].keys[kInstallKeys.size()].name + " of section [" +
               file.sections[0].name + "]";
    return {};
}

} // namespace vesk
