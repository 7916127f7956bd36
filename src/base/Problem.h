#pragma once

#include <exception>
#include <functional>
#include <string>
#include <string_view>

namespace vesk {

/// One thing that a run did not do, and why: what the build log, whose lines are fixed, does not
/// say.
struct Problem {
    std::string place;  ///< A step, an archive ("a.zip"), a member ("a.zip: dir\b.txt"), or a path.
    std::string what;   ///< What was not done: "not written".
    std::string reason; ///< Why, as AsReason gives it: "disk full".

    bool operator==(const Problem&) const = default;

    /// All three as one line: "a.zip: dir\b.txt: not written, disk full".
    [[nodiscard]] std::string Line() const;
};

/// Receives problems.
using ProblemReport = std::function<void(const Problem& problem)>;

/// A sentence as the end of another one: without the full stop at its end, the first word in lower
/// case unless it is a name, line ends and control characters as blanks.
std::string AsReason(std::string_view sentence);

/// Why something failed, from what it threw.
std::string ReasonOf(const std::exception& failure);

} // namespace vesk
