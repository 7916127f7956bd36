#pragma once

#include "archive/ExtractionOutcome.h"
#include "build/clsArchiveFetcher.h"
#include "build/clsBuildContext.h"

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace vesk {

/// Brings components from their archives into the build tree.
class clsComponentInstaller {
public:
    /// @param context, fetcher must outlive the object
    /// @param progress called with how much of the component at hand is done, 0 to 1
    clsComponentInstaller(clsBuildContext& context, const clsArchiveFetcher& fetcher,
                          std::function<void(double fraction)> progress);

    /// Installs a base component and runs the script that it brings. With the first one, PE Builder
    /// itself, the tree is made and its stock plug-ins are sorted.
    /// @return why it is not in the tree; empty when it is, with or without problems
    std::string InstallBaseComponent(std::size_t index);

    /// Reports the scripts of base components that were not run: to be called after the last one.
    void ReportScriptsNotRun() const;

    /// Installs a plug-in and edits its INF files.
    void InstallPlugin(const CatalogueEntry& plugin);

private:
    void CreateTree();
    bool ArchiveIsThere(const CatalogueEntry& component);
    bool ArchiveIsRight(const CatalogueEntry& component);
    ExtractionOutcome Extract(const CatalogueEntry& component, const std::string& folder);
    std::string ExtractBase(const CatalogueEntry& component);
    void ReportMissingProgram(const CatalogueEntry& component) const;
    void RunBaseScript(std::size_t index);
    void RunScriptSection(const std::string& script);
    void EditInfs(const CatalogueEntry& plugin, const std::string& folder);
    [[nodiscard]] std::string PluginOwnFolder(const CatalogueEntry& plugin) const;

    clsBuildContext& context_;
    const clsArchiveFetcher& fetcher_;
    std::function<void(double fraction)> progress_;
    /// Scripts that hold a part for the plug-ins, by the index of their base component. Collected
    /// for that stage; the run itself does nothing with them.
    std::map<std::size_t, std::string> pendingScripts_;
    std::set<std::string> unreadScripts_;        ///< Of a kind that is not run.
    std::vector<std::string> foundScripts_;      ///< By the last search.
    std::set<std::string> runScripts_;           ///< Those that are still there.
    std::map<std::string, std::string> folders_; ///< Of plug-ins, in lower case, to their archives.
    std::set<std::string> toldPlaces_;           ///< Where the search for scripts could not look.
};

} // namespace vesk
