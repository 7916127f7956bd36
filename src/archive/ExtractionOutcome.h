#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vesk {

/// Something of one member of an archive, or of the whole, that was not done: mostly that it was
/// not extracted, but also that a member which is in its place lacks its stored time.
struct MemberFailure {
    std::string member; ///< Its name, separated by "\"; empty for the archive as a whole.
    std::string what;   ///< What was not done: "not written".
    std::string reason; ///< Why, as AsReason gives it.

    bool operator==(const MemberFailure&) const = default;
};

/// What became of the extraction of one archive. Everything that is not among the failures was
/// done.
struct ExtractionOutcome {
    std::size_t extracted = 0; ///< Members that are complete in the target folder.
    std::vector<MemberFailure> failures;
};

} // namespace vesk
