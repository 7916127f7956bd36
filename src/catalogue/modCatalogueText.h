#pragma once

#include "catalogue/Catalogue.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

/// The catalogue file's whole text, header included. Exact to the byte: the reader goes by
/// position, and people compare files.
/// @param date when it is written, in the system's general format
std::string CatalogueText(const Catalogue& catalogue, const std::string& date);

/// Names of all sections in a text of the INI form, in its order, without the brackets.
std::vector<std::string> SectionNames(std::string_view iniText);

/// A text as a truth value: "True" and "False" in any case, or a number (0 is false). Nothing for
/// any other text, the empty one included.
std::optional<bool> ToBoolean(std::string_view text);

} // namespace vesk
