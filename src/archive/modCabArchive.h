#pragma once

#include "archive/modArchive.h"

namespace vesk {

/// ExtractArchive for a cabinet.
ExtractionOutcome ExtractCab(const std::string& path, const std::string& folder,
                             const ExtractionOwner& owner);

/// InspectArchive for a cabinet: its checksums are verified as well.
std::vector<MemberFailure> InspectCab(const std::string& path);

} // namespace vesk
