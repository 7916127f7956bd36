#pragma once

#include "catalogue/modCatalogueCheck.h"

#include <optional>
#include <string>

namespace vesk {

/// The first thing of a catalogue that its file would not give back as it is: a text that is too
/// long for a reader, or loses its quotes. Nothing when all comes back.
std::optional<CatalogueProblem> LostBySaving(const Catalogue& catalogue);

/// The same for people, in a sentence or two; a long name in it is shortened.
std::string LostText(const CatalogueProblem& lost);

} // namespace vesk
