#pragma once

#include "archive/ExtractionOutcome.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Archives of both kinds, distinguished by the extension of their names.
namespace vesk {

/// What the extraction of an archive asks of its caller. Everything may be left empty.
struct ExtractionOwner {
    /// Asked for the password of an archive, again while it is wrong; nothing means that there is
    /// none, and it is not asked again. @param wrongBefore the last answer was a wrong one
    std::function<std::optional<std::string>(bool wrongBefore)> password;

    /// Called now and then, also within a large member, so that a window stays alive.
    /// @param fraction of the archive's bytes that is done, 0 to 1
    std::function<void(double fraction)> progress;
};

/// Extracts every member below the folder, over existing files; what cannot be extracted does not
/// stop the rest. An archive that is neither .zip nor .cab, or has no member, is a failure as a
/// whole. Throws nothing but what the owner throws.
ExtractionOutcome ExtractArchive(const std::string& path, const std::string& folder,
                                 const ExtractionOwner& owner);

/// What an extraction would not do: every member is unpacked and compared with its checksum, a
/// piece at a time, and nothing is written. Of cabinets in LZX and Quantum only the checksums of
/// the packed data are compared. An archive that is neither .zip nor .cab is not looked at.
std::vector<MemberFailure> InspectArchive(const std::string& path,
                                          const ExtractionOwner& owner = {});

} // namespace vesk
