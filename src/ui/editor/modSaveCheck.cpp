#include "ui/editor/modSaveCheck.h"

#include "catalogue/modCatalogueFaults.h"
#include "catalogue/modCatalogueText.h"
#include "catalogue/modIniText.h"
#include "ui/kit/modBoxText.h"

#include <algorithm>

namespace vesk {

std::optional<CatalogueProblem> LostBySaving(const Catalogue& catalogue) {
    const CatalogueCheck check = CheckCatalogue(catalogue, {});
    const auto lost = std::ranges::find_if(check.problems, [](const CatalogueProblem& problem) {
        return problem.kind == CatalogueProblemKind::ValueTooLong ||
               problem.kind == CatalogueProblemKind::ValueForm;
    });
    if (lost != check.problems.end())
        return *lost;
    const std::string fault = CatalogueFault(ParseIni(CatalogueText(catalogue, "")));
    if (fault.empty())
        return std::nullopt;
    return CatalogueProblem{CatalogueProblemKind::TooMany, "the catalogue", fault, std::nullopt};
}

std::string LostText(const CatalogueProblem& lost) {
    return AsSentence(Shortened(lost.entry) + ": " + lost.sentence);
}

} // namespace vesk
