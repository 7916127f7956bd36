#include "ui/editor/modSaveCheck.h"

#include "ui/kit/modBoxText.h"

#include <algorithm>

namespace vesk {

std::optional<CatalogueProblem> LostBySaving(const Catalogue& catalogue) {
    const CatalogueCheck check = CheckCatalogue(catalogue, {});
    const auto lost = std::ranges::find_if(check.problems, [](const CatalogueProblem& problem) {
        return problem.kind == CatalogueProblemKind::ValueTooLong ||
               problem.kind == CatalogueProblemKind::ValueForm;
    });
    return lost == check.problems.end() ? std::nullopt : std::optional(*lost);
}

std::string LostText(const CatalogueProblem& lost) {
    return AsSentence(Shortened(lost.entry) + ": " + lost.sentence);
}

} // namespace vesk
