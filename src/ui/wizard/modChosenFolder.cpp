#include "ui/wizard/modChosenFolder.h"

#include "base/Failure.h"
#include "base/Problem.h"
#include "ui/kit/clsWaitCursor.h"

namespace vesk {

std::string ChosenFolder::Warning() const {
    if (!IsForeign())
        return {};
    return "The installation folder was not made by a build: " + content.ForeignWords() +
           ". Everything in it is permanently deleted when the build starts.";
}

namespace {

/// @throws FolderRefused when what was typed as the Windows source, and is to be kept from being
/// emptied, is no path at all
clsFolderGuard GuardOf(const std::string& programPath, const std::string& sourceFolder) {
    try {
        return clsFolderGuard::OfSystem(programPath, sourceFolder);
    } catch (const Failure& failure) {
        throw FolderRefused("The folder of the Windows source cannot be looked at: " +
                            ReasonOf(failure) + ". Choose another one, or empty its field.");
    }
}

} // namespace

ChosenFolder LookAtFolder(const std::string& text, const std::string& programPath,
                          const std::string& sourceFolder) {
    const clsWaitCursor wait;
    const clsInstallFolder folder(text, GuardOf(programPath, sourceFolder));
    ChosenFolder chosen{folder, folder.Content()};
    if (const std::string why = folder.WhyKept(chosen.content); !why.empty())
        throw FolderRefused(folder.Path() + " would be emptied, and " + why + ".");
    return chosen;
}

} // namespace vesk
