#include "ui/wizard/clsBuildGate.h"

#include "ui/kit/clsWaitCursor.h"
#include "ui/kit/modWindow.h"
#include "ui/wizard/modWizardText.h"
#include "ui/wizard/pagBaseComponents.h"

namespace vesk {

clsBuildGate::clsBuildGate(const std::string& programPath, const Catalogue& catalogue,
                           const CatalogueLoad& load, const SourceState& source,
                           const pagBaseComponents& choices)
    : programPath_(programPath),
      catalogue_(catalogue),
      load_(load),
      source_(source),
      choices_(choices),
      archives_(programPath) {}

ChosenFolder clsBuildGate::LookAtFolder() const {
    choices_.RequireUsableLetters();
    return vesk::LookAtFolder(choices_.InstallFolder(), programPath_, choices_.SourceFolder());
}

std::string clsBuildGate::WarningOf(const ChosenFolder& chosen) {
    std::string warning = chosen.Warning();
    if (catalogue_.baseComponents.empty())
        return warning;
    const clsWaitCursor wait;
    const std::string fault = PeBuilderWarning(catalogue_.baseComponents.front(),
                                               archives_.Facts(kFirstArchiveName, LetWindowsPaint));
    return warning + (warning.empty() || fault.empty() ? "" : "\r\n") + fault;
}

BuildInputs clsBuildGate::InputsFor(const ChosenFolder& chosen) const {
    const bool isWhole = load_.state == CatalogueState::Whole;
    if (const std::string refusal = CatalogueRefusal(catalogue_, isWhole); !refusal.empty())
        throw FolderRefused(refusal);
    return {chosen.folder, choices_.SourceFolder(), programPath_, source_, chosen.IsForeign()};
}

} // namespace vesk
