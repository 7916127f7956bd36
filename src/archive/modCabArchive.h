#pragma once

#include "archive/modArchive.h"

#include <string>

namespace vesk {

/// ExtractArchive for a cabinet.
ExtractionOutcome ExtractCab(const std::string& path, const std::string& folder,
                             const ExtractionOwner& owner);

/// The same without writing: clsCab::Test.
ExtractionOutcome TestCab(const std::string& path, const ExtractionOwner& owner);

} // namespace vesk
