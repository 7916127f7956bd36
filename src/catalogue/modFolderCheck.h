#pragma once

#include "archive/modArchive.h"
#include "catalogue/Catalogue.h"
#include "catalogue/modCatalogueCheck.h"

#include <string>
#include <vector>

namespace vesk {

/// What would go wrong in a build of a catalogue with what lies in the program path.
/// @param owner asked for passwords, and called now and then while an archive is read
/// @param sectionNames as for CheckCatalogue
CatalogueCheck CheckWithProgramFolder(const std::string& programPath, const Catalogue& catalogue,
                                      const ExtractionOwner& owner,
                                      const std::vector<std::string>& sectionNames = {});

/// The same for a catalogue that was loaded from the file there.
CatalogueCheck CheckCatalogueFile(const std::string& programPath, const Catalogue& catalogue,
                                  const ExtractionOwner& owner = {});

} // namespace vesk
