#pragma once

#include "catalogue/Catalogue.h"

#include <functional>
#include <string>

namespace vesk {

/// What is known of an archive in the program folder.
enum class ArchiveState { Good, Missing, CrcDiffers };

/// The catalogue as a table for people: kind, ticked, locked, category, name, archive, state of the
/// archive. Columns are as wide as their widest entry; each line ends with a line feed.
std::string CatalogueTable(const Catalogue& catalogue,
                           const std::function<ArchiveState(const CatalogueEntry&)>& stateOf);

} // namespace vesk
