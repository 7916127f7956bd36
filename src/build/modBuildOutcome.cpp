#include "build/modBuildOutcome.h"

namespace vesk {

BuildVerdict VerdictOf(const BuildOutcome& outcome) {
    if (outcome.ending != BuildEnding::Done || !outcome.treeMade)
        return BuildVerdict::NotBuilt;
    if (!outcome.hasPeBuilder)
        return BuildVerdict::NotUsable;
    return outcome.problems > 0 ? BuildVerdict::WithProblems : BuildVerdict::Whole;
}

} // namespace vesk
