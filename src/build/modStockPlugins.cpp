#include "build/modStockPlugins.h"

#include "base/modFile.h"
#include "base/modText.h"
#include "build/modFileOperations.h"
#include "build/modPluginInf.h"
#include "build/modRelocation.h"

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

/// What PE Builder's archive did not bring is nothing that was left undone: its lines are logged as
/// ever, and there is nothing to report.
void RemoveStockFile(const clsBuildContext& context, const std::string& path) {
    if (StateOf(path) != PathState::Nothing)
        context.ResumeNext({path, "not removed"}, [&] { DeleteFileLogged(context, path); });
    else
        ResumeNext([](const Problem&) {}, {}, [&] { DeleteFileLogged(context, path); });
}

void RelocateStockPlugin(clsBuildContext& context, const StockPlugin& plugin) {
    const std::string inf = context.PluginFolder() + plugin.inf;
    const std::string folder = ParentOf(inf);
    const auto relocate = [&plugin](clsBuildContext& in) {
        RelocatePluginToCategory(in, plugin.inf, plugin.prefix);
    };
    const PathState state = StateOf(folder);
    if (state == PathState::Nothing || state == PathState::File) {
        clsBuildContext absent = context.Silent();
        absent.ResumeNext({}, [&] { relocate(absent); });
        if (state == PathState::File)
            context.report({folder, "not moved into its category", "it is a file"});
        return;
    }
    context.ResumeNext({folder, "not moved into its category"}, [&] { relocate(context); });
}

} // namespace

void PruneStockPlugins(clsBuildContext& context) {
    const clsInstallFolder& folder = context.inputs.installFolder;
    const std::string isoWriter = context.InstallFolder() + "\\mkisofs.exe";
    context.Log("Renaming File: mkisofs.exe to mymkisofs.exe");
    // What PE Builder's archive did not bring is nothing that was left undone.
    const PathState state = StateOf(isoWriter);
    if (state == PathState::File || state == PathState::Unknown)
        context.ResumeNext({isoWriter, "not renamed"}, [&] {
            MovePath(isoWriter, context.InstallFolder() + "\\mymkisofs.exe");
        });
    for (const char* stock : kRemovedFolders) {
        const std::string relative = std::string("\\Plugin") + stock;
        context.ResumeNext({context.PluginFolder() + stock, "not removed"}, [&] {
            DeleteFolderLogged(context, clsRemovableTree::Below(folder, relative));
        });
    }
    for (const char* stock : kRemovedFiles)
        RemoveStockFile(context, context.PluginFolder() + stock);
    context.menuRecords.clear();
    for (const StockPlugin& plugin : kRelocatedPlugins)
        RelocateStockPlugin(context, plugin);
    context.Log("");
}

} // namespace vesk
