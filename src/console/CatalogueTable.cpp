#include "console/CatalogueTable.h"

#include <algorithm>
#include <array>
#include <vector>

namespace vesk {

namespace {

constexpr std::size_t kColumns = 7;
using Row = std::array<std::string, kColumns>;

const char* StateText(ArchiveState state) {
    switch (state) {
    case ArchiveState::Good:
        return "good";
    case ArchiveState::Missing:
        return "missing";
    case ArchiveState::CrcDiffers:
        return "CRC differs";
    }
    return "";
}

} // namespace

std::string CatalogueTable(const Catalogue& catalogue,
                           const std::function<ArchiveState(const CatalogueEntry&)>& stateOf) {
    std::vector<Row> rows = {
        {"Kind", "Ticked", "Locked", "Category", "Name", "Archive", "Present"}};
    const auto add = [&](const char* kind, const std::vector<CatalogueEntry>& entries) {
        for (const CatalogueEntry& entry : entries)
            rows.push_back({kind, entry.enabled ? "yes" : "no", entry.lock ? "yes" : "no",
                            entry.cat, entry.name, entry.zip, StateText(stateOf(entry))});
    };
    add("base", catalogue.baseComponents);
    add("plug-in", catalogue.plugins);

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
