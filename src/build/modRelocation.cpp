#include "build/modRelocation.h"

#include "base/Failure.h"
#include "base/RunTimeError.h"
#include "base/modFile.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "build/clsReportedIni.h"
#include "build/modFileOperations.h"
#include "build/modPluginInf.h"

#include <windows.h>

#include <utility>

namespace vesk {

void RelocatePluginToCategory(clsBuildContext& context, const std::string& relativeInf,
                              const std::string& prefix) {
    const std::string pluginFolder = context.PluginFolder();
    const CategoryRecord* category = FindCategory(context.catalogue, prefix);
    const std::string relativeFolder = ParentOf(relativeInf);
    const std::string inf = pluginFolder + relativeInf;

    const std::string menuFile = GetAppendMenuFile(inf);
    if (!menuFile.empty())
        OnPluginMenuFile(pluginFolder + relativeFolder + "\\" + menuFile);
    // What cannot be edited is moved all the same, and has its place in the menu.
    const Attempt edit{inf, "not edited"};
    const clsBuildContext editing = EditingContext(context, edit);
    editing.ResumeNext(edit, [&] { PrefixPluginName(editing, inf, prefix); });
    editing.ResumeNext(edit, [&] { CommentOutAppendMenu(editing, inf); });

    // Only now: the edits above are made even when the prefix has no category.
    if (category == nullptr)
        throw Failure(kSubscriptOutOfRange, "RelocatePluginToCategory",
                      "no category has the key " + prefix);
    const std::string categoryFolder = pluginFolder + "\\" + category->value;
    const std::string source = pluginFolder + relativeFolder;
    const std::string target = categoryFolder + relativeFolder;
    context.Log("Moving Folder: " + source + " to " + target);
    // A file of that name is no plug-in, and the system would move it as if it were one.
    RequireInTree(context, target);
    if (!FolderExists(source))
        ThrowSystemError(ERROR_PATH_NOT_FOUND, "cannot move", source);
    MovePath(source, target);

    const std::string movedInf = categoryFolder + relativeInf;
    const Attempt read{movedInf, "not read for the menu"};
    const clsBuildContext reading = EditingContext(context, read);
    CatalogueEntry entry;
    reading.ResumeNext(read, [&] {
        const clsReportedIni moved(reading, movedInf);
        entry.name = moved.GetStringValue(kPluginSection, "Name");
        moved.TellCut(kPluginSection, "Name");
    });
    entry.cat = prefix;
    context.menuRecords.push_back({entry.name, prefix, {movedInf}});
    context.catalogue.plugins.push_back(std::move(entry));
}

} // namespace vesk
