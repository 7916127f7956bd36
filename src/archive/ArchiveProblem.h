#pragma once

#include <stdexcept>

namespace vesk {

/// Why an archive or one of its members is not extracted, for a reason of its own and not of the
/// system's: what it holds, what it is called, what is in its way. The text is for people.
struct ArchiveProblem : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The content of a ZIP's member is not what its entry says. Under a password that has not been
/// proven this may also mean that the password is wrong.
struct ZipContentProblem : ArchiveProblem {
    using ArchiveProblem::ArchiveProblem;
};

} // namespace vesk
