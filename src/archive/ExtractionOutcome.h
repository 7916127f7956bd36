#pragma once

#include <cstddef>
#include <string>
#include <utility>
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

/// What became of the extraction of one archive. Everything that is not among the failures, told or
/// only counted, was done.
struct ExtractionOutcome {
    /// Failures that are kept. An archive can claim a member in each 46 of its bytes, and whoever
    /// shows failures keeps them once more.
    static constexpr std::size_t kMostTold = 1000;

    std::size_t extracted = 0; ///< Members that are complete in the target folder.
    std::vector<MemberFailure> failures;
    std::size_t untold = 0; ///< Further failures, which are only counted.

    /// Takes a failure in. @return false when it is only counted
    bool Tell(MemberFailure failure) {
        if (failures.size() >= kMostTold) {
            ++untold;
            return false;
        }
        failures.push_back(std::move(failure));
        return true;
    }
};

} // namespace vesk
