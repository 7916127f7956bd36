#pragma once

#include "catalogue/Catalogue.h"

#include <string>

namespace vesk {

/// Name of the file's key that says whether categories are shown; no category can have it for its
/// own.
inline constexpr const char* kShowCategoriesKey = "ShowCategories";

/// The catalogue file's whole text, header included. Exact to the byte: the reader goes by
/// position, and people compare files.
/// @param date when it is written, in the system's general format
std::string CatalogueText(const Catalogue& catalogue, const std::string& date);

} // namespace vesk
