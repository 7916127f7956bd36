#include "console/modCatalogueTable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace vesk {

namespace {

constexpr std::size_t kColumns = 7;
using Row = std::array<std::string, kColumns>;

} // namespace

std::string CatalogueTable(
    const Catalogue& catalogue,
    const std::function<ArchiveState(const CatalogueEntry&, const EntryPlace&)>& stateOf) {
    std::vector<Row> rows = {{"Kind", "Ticked", "Locked", "Category", "Name", "Archive", "State"}};
    for (const EntryList list : {EntryList::BaseComponents, EntryList::Plugins}) {
        EntryPlace place{list, 0};
        for (const CatalogueEntry& entry : EntriesOf(catalogue, list)) {
            rows.push_back({list == EntryList::Plugins ? "plug-in" : "base",
                            entry.enabled ? "yes" : "no", entry.lock ? "yes" : "no", entry.cat,
                            entry.name, entry.zip,
                            ArchiveWords(entry, place, stateOf(entry, place))});
            ++place.index;
        }
    }

    std::array<std::size_t, kColumns> widths{};
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < kColumns; ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    std::string table;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < kColumns; ++i)
            line += row[i] + std::string(widths[i] - row[i].size() + 2, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        table += line + "\n";
    }
    return table;
}

} // namespace vesk
