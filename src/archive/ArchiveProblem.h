#pragma once

#include <stdexcept>

namespace vesk {

/// Why an archive or one of its members is not extracted, for a reason of its own and not of the
/// system's: what it holds, what it is called, what is in its way. The text is for people.
struct ArchiveProblem : std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace vesk
