#include "base/ResumeNext.h"
#include "base/modFile.h"
#include "build/modBuildTree.h"
#include "build/modFileOperations.h"
#include "build/modPluginInf.h"

#include <array>
#include <string>

namespace vesk {

namespace {

constexpr std::array kRemovedFolders = {
    "\\!custom",    "\\autorun",  "\\a43",      "\\corepe",  "\\bst5",    "\\chkdsk",
    "\\deepburner", "\\dospe",    "\\dskcmd",   "\\erd2002", "\\nu2menu", "\\putty",
    "\\snapshot",   "\\StarWind", "\\ultravnc", "\\zz5",
};

constexpr std::array kRemovedFiles = {
    "\\penetcfg\\autorun-penetcfg.inf",
    "\\penetcfg\\autorun0penetcfg.cmd",
    "\\bginfo\\autorun_bginfo.cmd",
};

struct StockPlugin {
    const char* prefix;
    const char* inf;
};

constexpr std::array<StockPlugin, 17> kRelocatedPlugins = {{
    {"100", "\\bootfix\\bootfix.inf"},
    {"100", "\\dcomlaunch\\dcomlaunch.inf"},
    {"100", "\\mstsc\\mstsc.inf"},
    {"100", "\\peinst\\peinst.inf"},
    {"100", "\\penetcfg\\penetcfg.inf"},
    {"100", "\\ramdisk\\ramdisk.inf"},
    {"100", "\\sermouse\\sermouse.inf"},
    {"100", "\\keyboard\\keyboard.inf"},
    {"200", "\\bginfo\\bginfo.inf"},
    {"200", "\\ghost8\\ghost.inf"},
    {"200", "\\irfanview\\irfanview.inf"},
    {"200", "\\nero burning rom\\penero.inf"},
    {"200", "\\total commander\\totalcmd.inf"},
    {"300", "\\aspi\\aspi.inf"},
    {"500", "\\adawarese\\adawarese.inf"},
    {"500", "\\mcafee\\mcafee.inf"},
    {"500", "\\stinger\\stinger.inf"},
}};

} // namespace

void PruneStockPlugins(BuildContext& context) {
    const std::string& installFolder = context.inputs.installFolder;
    const std::string& pluginFolder = context.catalogue.pluginFolder;
    context.Log("Renaming File: mkisofs.exe to mymkisofs.exe");
    ResumeNext(
        [&] { MovePath(installFolder + "\\mkisofs.exe", installFolder + "\\mymkisofs.exe"); });
    for (const char* folder : kRemovedFolders)
        ResumeNext([&] { DeleteFolderLogged(context, pluginFolder + folder); });
    for (const char* file : kRemovedFiles)
        ResumeNext([&] { DeleteFileLogged(context, pluginFolder + file); });
    context.menuRecords.clear();
    for (const StockPlugin& plugin : kRelocatedPlugins)
        ResumeNext([&] { RelocatePluginToCategory(context, plugin.inf, plugin.prefix); });
    context.Log("");
}

} // namespace vesk
