#include "ui/wizard/modChosenFolder.h"

#include "ui/kit/modWindow.h"

namespace vesk {

std::string ChosenFolder::Warning() const {
    if (!IsForeign())
        return {};
    return "The installation folder was not made by a build: " + content.ForeignWords() +
           ". Everything in it is permanently deleted when the build starts.";
}

ChosenFolder LookAtFolder(const std::string& text, const std::string& programPath,
                          const std::string& sourceFolder) {
    const WaitCursor wait;
    const clsInstallFolder folder(text, clsFolderGuard::OfSystem(programPath, sourceFolder));
    ChosenFolder chosen{folder, folder.Content()};
    if (chosen.IsForeign() && folder.KeepsForeign())
        throw FolderRefused(
            "The installation folder is among installed programs, where only a folder that a "
            "build made can be emptied, and " +
            chosen.content.ForeignWords() + ": " + folder.Path());
    return chosen;
}

} // namespace vesk
