#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

/// One base component or plug-in of the catalogue.
struct CatalogueEntry {
    std::string name;     ///< Shown to people; also ticked by this name.
    std::string zip;      ///< Archive file name in the program folder, .zip or .cab.
    std::string cat;      ///< Key of the plug-in's category; empty for base components.
    bool enabled = false; ///< Ticked.
    bool lock = false;    ///< The user cannot change the tick.
    std::string url;      ///< Where the archive is downloaded from; several are separated by ",".
    std::string crc;      ///< Expected CRC-32, upper-case hexadecimal without leading zeros.

    bool operator==(const CatalogueEntry&) const = default;
};

/// One plug-in category.
struct CategoryRecord {
    std::string value;   ///< Folder name below the plug-in folder.
    std::string key;     ///< What plug-ins carry in `cat`, and the prefix of their names.
    std::string caption; ///< Title for people, derived from value and key on load.

    bool operator==(const CategoryRecord&) const = default;
};

/// Everything the catalogue file says, with what follows from it.
struct Catalogue {
    std::string installFolder;   ///< Name of the build tree's folder below the install root.
    std::string installPathFlag; ///< "0": the root is Program Files' drive, else Program Files.
    std::vector<CatalogueEntry> baseComponents;
    std::vector<CatalogueEntry> plugins;
    bool showCategories = false;
    std::vector<CategoryRecord> categories;
    std::string installRoot; ///< Derived; no trailing backslash.

    /// Derived: where the plug-ins would be with the catalogue's own folders. A build, whose folder
    /// the user may have chosen, asks that folder (clsInstallFolder::PluginFolder).
    std::string pluginFolder;
};

/// How many entries of one list can be worked with: the wizard counts its lines in one byte.
inline constexpr std::size_t kMostLines = 256;

/// Which of the catalogue's two lists of entries.
enum class EntryList { BaseComponents, Plugins };

/// Which entry of a catalogue.
struct EntryPlace {
    EntryList list = EntryList::BaseComponents;
    std::size_t index = 0;

    bool operator==(const EntryPlace&) const = default;

    /// The first base component is PE Builder itself, with which a build does more than with
    /// others.
    [[nodiscard]] bool IsPeBuilder() const {
        return list == EntryList::BaseComponents && index == 0;
    }
};

/// One of the two lists.
inline const std::vector<CatalogueEntry>& EntriesOf(const Catalogue& catalogue, EntryList list) {
    return list == EntryList::Plugins ? catalogue.plugins : catalogue.baseComponents;
}
inline std::vector<CatalogueEntry>& EntriesOf(Catalogue& catalogue, EntryList list) {
    return list == EntryList::Plugins ? catalogue.plugins : catalogue.baseComponents;
}

/// The first category with this key; null when there is none.
inline const CategoryRecord* FindCategory(const Catalogue& catalogue, std::string_view key) {
    const auto found = std::ranges::find(catalogue.categories, key, &CategoryRecord::key);
    return found == catalogue.categories.end() ? nullptr : &*found;
}

} // namespace vesk
