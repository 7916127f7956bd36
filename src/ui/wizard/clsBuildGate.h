#pragma once

#include "build/clsBuildRun.h"
#include "catalogue/Catalogue.h"
#include "catalogue/clsProgramArchives.h"
#include "catalogue/modCatalogueFile.h"
#include "source/SourceState.h"
#include "ui/wizard/modChosenFolder.h"

#include <string>

namespace vesk {

class pagBaseComponents;

/// What stands between the wizard's choices and a build: whether the folder can be built into, what
/// the user has to be warned of before, and what the build then works on.
class clsBuildGate {
public:
    /// All of them outlive the object. @param programPath ends in "\"
    clsBuildGate(const std::string& programPath, const Catalogue& catalogue,
                 const CatalogueLoad& load, const SourceState& source,
                 const pagBaseComponents& choices);

    /// The installation folder that is chosen now. @throws FolderRefused
    [[nodiscard]] ChosenFolder LookAtFolder() const;

    /// What a build into the folder would delete, and whether its result can be used; empty
    /// when there is nothing to warn of. Reads PE Builder's archive.
    std::string WarningOf(const ChosenFolder& chosen);

    /// @throws FolderRefused when the catalogue cannot be built from at all
    [[nodiscard]] BuildInputs InputsFor(const ChosenFolder& chosen) const;

private:
    const std::string& programPath_;
    const Catalogue& catalogue_;
    const CatalogueLoad& load_;
    const SourceState& source_;
    const pagBaseComponents& choices_;
    clsProgramArchives archives_;
};

} // namespace vesk
