#pragma once

#include "catalogue/modArchiveState.h"

#include <functional>
#include <string>

namespace vesk {

/// The catalogue as a table for people: kind, ticked, locked, category, name, archive, and what a
/// build does about the archive. Columns are as wide as their widest entry; each line ends with a
/// line feed.
std::string CatalogueTable(
    const Catalogue& catalogue,
    const std::function<ArchiveState(const CatalogueEntry&, const EntryPlace&)>& stateOf);

} // namespace vesk
