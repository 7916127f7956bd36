#pragma once

#include <cstddef>
#include <string>

namespace vesk {

/// How a build run ended, as the last lines of its log say.
enum class BuildEnding { Done, InstallFailed, Aborted };

/// What a build run came to: what its log's last lines say, and more.
struct BuildOutcome {
    BuildEnding ending = BuildEnding::Done;
    bool treeMade = false;     ///< The run came as far as making a tree.
    bool hasPeBuilder = false; ///< PE Builder's archive is in the tree: without it nothing works.
    std::size_t problems = 0;  ///< How many were reported.
    std::string reason;        ///< Why the tree was not made or is not usable.
};

/// What a user may do with the result.
enum class BuildVerdict {
    Whole,        ///< Everything that was asked for is in the tree.
    WithProblems, ///< Usable, but something was not done.
    NotUsable,    ///< A tree was made, without PE Builder.
    NotBuilt,     ///< No tree was made.
};

/// The verdict on a run that is over.
BuildVerdict VerdictOf(const BuildOutcome& outcome);

} // namespace vesk
