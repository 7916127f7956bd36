#include "base/ResumeNext.h"
#include "base/modFile.h"
#include "base/modSpecialFolder.h"
#include "build/clsShellLink.h"
#include "build/modBuildTree.h"
#include "build/modFileOperations.h"
#include "catalogue/clsINI.h"

#include <windows.h>

#include <string>

namespace vesk {

namespace {

void CopyReadMe(const BuildContext& context) {
    const std::string& program = context.inputs.programPath;
    const std::string& folder = context.inputs.installFolder;
    context.Log("Copying file: " + program + "Readme.txt to " + folder + "\\Readme.txt");
    ResumeNext([&] { CopyFileOver(program + "readme.txt", folder + "\\readme.txt"); });
}

void CreateShortcuts(const BuildContext& context) {
    const std::string& folder = context.inputs.installFolder;
    const std::string startMenu =
        SpecialFolderPath(SpecialFolder::CommonPrograms) + "\\Vesk Builder";
    const std::string desktopLink =
        SpecialFolderPath(SpecialFolder::Desktop) + "\\Vesk Builder.lnk";
    const std::string programLink = startMenu + "\\Vesk Builder.lnk";
    const std::string readMeLink = startMenu + "\\ReadMe.lnk";
    const auto create = [&](const std::string& link, const std::string& target,
                            const std::string& icon) {
        ResumeNext([&] {
            clsShellLink::CreateShellLink(link, folder + target, folder, "", icon, 0, SW_SHOWNORMAL,
                                          "");
        });
    };
    const std::string icon = folder + "\\vesk.ico";

    if (FolderExists(startMenu))
        ResumeNext([&] { DeleteFolderLogged(context, startMenu); });
    ResumeNext([&] { CreateFolder(startMenu); });
    context.Log("Creating shortcut: " + programLink);
    context.Log("Creating shortcut: " + readMeLink);
    create(programLink, "\\pebuilder.exe", icon);
    create(readMeLink, "\\readme.txt", "");
    context.Log("Creating shortcut: " + desktopLink);
    create(desktopLink, "\\pebuilder.exe", icon);
}

void WriteMenuFile(const BuildContext& context) {
    const clsINI ini(context.inputs.installFolder + "\\vesklive.ini");
    context.Log("Creating File: " + ini.iniFileName);
    for (std::size_t i = 0; i < context.menuRecords.size(); ++i) {
        const MenuRecord& record = context.menuRecords[i];
        if (record.name.empty())
            continue;
        const std::string section = std::to_string(i);
        ini.SetValue(section, "Name", record.name);
        ini.SetValue(section, "Cat", record.cat);
        for (std::size_t j = 0; j < record.infs.size(); ++j)
            ini.SetValue(section, "Inf" + std::to_string(j), record.infs[j]);
    }
    for (const CategoryRecord& category : context.catalogue.categories)
        ini.SetValue("Categories", category.key, category.value);
}

} // namespace

void FinishTree(const BuildContext& context) {
    CopyReadMe(context);
    CreateShortcuts(context);
    WriteMenuFile(context);
}

} // namespace vesk
