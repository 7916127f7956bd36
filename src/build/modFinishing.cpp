#include "build/modFinishing.h"

#include "base/modFile.h"
#include "base/modSpecialFolder.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "build/clsShellLink.h"
#include "build/modFileOperations.h"
#include "build/modMenuFile.h"

#include <windows.h>

#include <stdexcept>
#include <string>

namespace vesk {

namespace {

void CopyReadMe(const clsBuildContext& context) {
    const std::string& program = context.inputs.programPath;
    const std::string& folder = context.InstallFolder();
    context.Log("Copying file: " + program + "Readme.txt to " + folder + "\\Readme.txt");
    context.ResumeNext({folder + "\\readme.txt", "not written"}, [&] {
        // One that came out of an archive stays where there is nothing to put in its place.
        if (StateOf(program + "readme.txt") == PathState::Nothing)
            ThrowSystemError(ERROR_FILE_NOT_FOUND, "cannot copy", program + "readme.txt");
        RequireInTree(context, folder + "\\readme.txt");
        RemoveOwnFile(folder + "\\readme.txt");
        CopyFileOver(program + "readme.txt", folder + "\\readme.txt");
    });
}

/// Makes the start menu's folder afresh. @return false when there is none to put shortcuts into
bool RenewStartMenu(const clsBuildContext& context, const std::string& startMenu) {
    return context.ResumeNext({startMenu, "not made"}, [&] {
        const clsRemovableTree old = clsRemovableTree::StartMenuFolder();
        const PathState state = StateOf(old.Path());
        if (state == PathState::Folder || state == PathState::Unknown)
            DeleteFolderLogged(context, old);
        if (HasLinkBelow(ParentOf(old.Path()), old.Path()))
            throw std::runtime_error("there is a link in its place");
        CreateFolderPath(old.Path());
    });
}

void CreateShortcut(const clsBuildContext& context, const std::string& link,
                    const std::string& target, const std::string& icon) {
    const std::string& folder = context.InstallFolder();
    context.frontEnd.LetEventsRun(); // each takes long, the first one most: the system loads much
    context.ResumeNext({link, "not made"}, [&] {
        // Where the system knows no such folder, the link's path begins with nothing.
        if (link.starts_with('\\') && !link.starts_with("\\\\"))
            throw std::runtime_error("the system has no folder for it");
        // What stands there goes first: it may be a second name of a file elsewhere.
        RemoveOwnFile(link);
        clsShellLink::CreateShellLink(link, folder + target, folder, "", icon, 0, SW_SHOWNORMAL,
                                      "");
    });
}

void CreateShortcuts(const clsBuildContext& context) {
    const std::string startMenu = clsRemovableTree::StartMenuPath();
    const std::string desktopLink =
        SpecialFolderPath(SpecialFolder::Desktop) + "\\Vesk Builder.lnk";
    const std::string programLink = startMenu + "\\Vesk Builder.lnk";
    const std::string readMeLink = startMenu + "\\ReadMe.lnk";
    const std::string icon = context.InstallFolder() + "\\vesk.ico";

    const bool hasStartMenu = RenewStartMenu(context, startMenu);
    context.Log("Creating shortcut: " + programLink);
    context.Log("Creating shortcut: " + readMeLink);
    if (hasStartMenu) {
        CreateShortcut(context, programLink, "\\pebuilder.exe", icon);
        CreateShortcut(context, readMeLink, "\\readme.txt", "");
    }
    context.Log("Creating shortcut: " + desktopLink);
    CreateShortcut(context, desktopLink, "\\pebuilder.exe", icon);
}

} // namespace

void FinishTree(const clsBuildContext& context) {
    CopyReadMe(context);
    CreateShortcuts(context);
    WriteMenuFile(context);
}

} // namespace vesk
