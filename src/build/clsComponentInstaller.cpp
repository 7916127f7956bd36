#include "build/clsComponentInstaller.h"

#include "archive/modArchive.h"
#include "archive/modArchiveName.h"
#include "base/modFile.h"
#include "base/modText.h"
#include "build/modArchiveFault.h"
#include "build/modFileOperations.h"
#include "build/modPluginInf.h"
#include "build/modSettingsFile.h"
#include "build/modStockPlugins.h"
#include "script/modScript.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace vesk {

clsComponentInstaller::clsComponentInstaller(clsBuildContext& context,
                                             const clsArchiveFetcher& fetcher,
                                             std::function<void(double fraction)> progress)
    : context_(context), fetcher_(fetcher), progress_(std::move(progress)) {}

/// Whether a component's archive stands in the program folder; logs and reports when it does not.
bool clsComponentInstaller::ArchiveIsThere(const CatalogueEntry& component) {
    const bool plain = IsPlainArchiveName(component.zip);
    if (plain && FileExists(context_.ArchivePath(component)))
        return true;
    context_.Log("Archive: " + context_.ArchivePath(component) + " [not found]");
    if (!fetcher_.HasTold(component.zip))
        context_.report({component.zip, "not installed",
                         plain ? "there is no such archive in the program folder"
                               : "its name in the catalogue cannot be an archive's"});
    return false;
}

/// Whether an archive that is there is the one that the catalogue means; logs and reports when not.
bool clsComponentInstaller::ArchiveIsRight(const CatalogueEntry& component) {
    const std::string fault = ArchiveFault(context_, context_.ArchivePath(component), component);
    if (fault.empty())
        return true;
    context_.Warn(component, " CRC failed. !!!");
    context_.report({component.zip, "not installed", fault});
    return false;
}

std::string clsComponentInstaller::InstallBaseComponent(std::size_t index) {
    const CatalogueEntry& component = context_.catalogue.baseComponents[index];
    const bool isPeBuilder = index == 0;
    if (!ArchiveIsThere(component))
        return component.zip + " is not in the program folder";
    if (isPeBuilder)
        CreateTree();
    context_.Announce("Processing: " + component.zip);
    std::string missing = component.zip + " is not the archive that the catalogue names";
    if (ArchiveIsRight(component)) {
        missing = ExtractBase(component);
        if (isPeBuilder && missing.empty())
            ReportMissingProgram(component);
        context_.Log("");
        RunBaseScript(index);
        std::erase_if(runScripts_, [](const std::string& path) { return !FileExists(path); });
    }
    if (isPeBuilder) {
        WriteSettingsFile(context_);
        PruneStockPlugins(context_);
    }
    return missing;
}

/// @return why nothing of the archive is in the tree; empty when something is
std::string clsComponentInstaller::ExtractBase(const CatalogueEntry& component) {
    const ExtractionOutcome outcome = Extract(component, context_.InstallFolder());
    return outcome.extracted > 0 ? std::string() : component.zip + " could not be extracted";
}

void clsComponentInstaller::ReportMissingProgram(const CatalogueEntry& component) const {
    if (!FileExists(context_.InstallFolder() + "\\pebuilder.exe"))
        context_.report({component.zip, "pebuilder.exe not in the tree",
                         "without it the shortcuts lead nowhere"});
}

void clsComponentInstaller::CreateTree() {
    const std::string pluginFolder = context_.PluginFolder();
    const auto create = [this](const std::string& folder) {
        context_.ResumeNext({folder, "not made"}, [&] { CreateFolderLogged(context_, folder); });
    };
    create(context_.InstallFolder());
    context_.MarkTree();
    create(pluginFolder);
    for (const CategoryRecord& category : context_.catalogue.categories)
        create(pluginFolder + "\\" + category.value);
    context_.Log("");
    if (!context_.catalogue.showCategories)
        return;
    for (const CategoryRecord& category : context_.catalogue.categories) {
        const std::string inf = "\\" + category.value + "\\" + category.value + ".inf";
        context_.ResumeNext({pluginFolder + inf, "not written"}, [&] {
            CreateCategorySeparator(context_, inf, category.key, category.caption);
        });
    }
    context_.Log("");
}

ExtractionOutcome clsComponentInstaller::Extract(const CatalogueEntry& component,
                                                 const std::string& folder) {
    const std::string archive = context_.ArchivePath(component);
    context_.Log("Archive:  " + archive);
    context_.MarkTree();
    ExtractionOwner owner;
    owner.password = [&](bool wrongBefore) {
        return context_.frontEnd.AskPassword(component.zip, wrongBefore);
    };
    owner.progress = [this](double fraction) {
        progress_(fraction);
        context_.frontEnd.LetEventsRun();
    };
    ExtractionOutcome outcome;
    context_.ResumeNext({component.zip, "not extracted"}, [&] {
        RequireInTree(context_, folder);
        outcome = ExtractArchive(archive, folder, owner);
    });
    for (const MemberFailure& failure : outcome.failures) {
        const std::string member = failure.member.empty() ? "" : ": " + failure.member;
        context_.report({component.zip + member, failure.what, failure.reason});
    }
    return outcome;
}

void clsComponentInstaller::RunBaseScript(std::size_t index) {
    std::string pattern = "*.script";
    const FoundFiles found =
        FindFiles(context_.InstallFolder() + "\\", pattern, "not searched for scripts",
                  [this] { context_.frontEnd.LetEventsRun(); });
    for (const Problem& problem : found.problems) {
        // The whole tree is searched for each component.
        if (toldPlaces_.insert(problem.place).second)
            context_.report(problem);
    }
    foundScripts_ = found.paths;
    const auto first = std::ranges::find_if(
        found.paths, [this](const std::string& path) { return !unreadScripts_.contains(path); });
    if (first == found.paths.end())
        return;
    const std::string& script = *first;
    runScripts_.insert(script);
    RunScriptSection(script);
    bool isUtf16 = false;
    bool hasPluginPart = false;
    const bool isRead = context_.ResumeNext({script, "not read"}, [&] {
        isUtf16 = IsUtf16(ReadFileIfThere(script));
        hasPluginPart = !isUtf16 && IsLineInFile(script, "[plugins]");
    });
    if (!isRead || isUtf16) {
        // Told already. It stays where it is, and out of the way of the next component's.
        unreadScripts_.insert(script);
        return;
    }
    if (hasPluginPart)
        pendingScripts_[index] = script;
    else
        context_.ResumeNext({script, "not removed"}, [&] { DeleteFileLogged(context_, script); });
}

void clsComponentInstaller::ReportScriptsNotRun() const {
    for (const std::string& script : foundScripts_) {
        if (!runScripts_.contains(script) && !unreadScripts_.contains(script))
            context_.report({script, "not run",
                             "for each base component only the first script that is found is run"});
    }
}

void clsComponentInstaller::RunScriptSection(const std::string& script) {
    context_.ResumeNext({script, "not run to its end"}, [&] {
        ProcessScript(script, "[base]",
                      {[this](const std::string& line) { context_.Log(line); },
                       [&](const std::string& what, const std::string& reason) {
                           context_.report({script, what, reason});
                       },
                       context_.InstallFolder(), context_.inputs.sourceFolder});
    });
}

void clsComponentInstaller::InstallPlugin(const CatalogueEntry& plugin) {
    if (!ArchiveIsThere(plugin)) {
        context_.Log("");
        return;
    }
    if (!ArchiveIsRight(plugin))
        return;
    context_.Announce("Processing: " + plugin.zip);
    const std::string folder = PluginOwnFolder(plugin);
    const auto [first, isNew] = folders_.try_emplace(LowerCase(folder), plugin.zip);
    if (!isNew && LowerCase(first->second) != LowerCase(plugin.zip))
        context_.report({plugin.zip, "not kept apart from " + first->second,
                         "both are extracted into " + folder});
    if (FindCategory(context_.catalogue, plugin.cat) == nullptr)
        context_.report({plugin.zip, "not put into a category",
                         "the catalogue has no category \"" + plugin.cat + "\""});
    Extract(plugin, folder);
    if (IsInTree(context_, folder))
        EditInfs(plugin, folder);
}

void clsComponentInstaller::EditInfs(const CatalogueEntry& plugin, const std::string& folder) {
    std::string pattern; // the search's own default: INF files
    const FoundFiles found = FindFiles(folder + "\\", pattern, "not edited",
                                       [this] { context_.frontEnd.LetEventsRun(); });
    std::ranges::for_each(found.problems, context_.report);
    for (const std::string& inf : found.paths) {
        context_.frontEnd.LetEventsRun(); // one that needs no edit logs nothing
        const Attempt attempt{inf, "not edited"};
        // The profile functions would read all of it for every value.
        if (!context_.ResumeNext(attempt, [&] { RequireTextSize(inf); }))
            continue;
        const clsBuildContext context = EditingContext(context_, attempt);
        context.ResumeNext(attempt, [&] { PrefixPluginName(context, inf, plugin.cat); });
        context.ResumeNext(attempt, [&] { CommentOutAppendMenu(context, inf); });
        context.ResumeNext(attempt, [&] { SetPluginEnable(context, inf); });
    }
}

/// A plug-in whose category is unknown goes straight below the plug-in folder.
std::string clsComponentInstaller::PluginOwnFolder(const CatalogueEntry& plugin) const {
    const CategoryRecord* const category = FindCategory(context_.catalogue, plugin.cat);
    const std::string categoryFolder = category == nullptr ? "" : "\\" + category->value;
    return context_.PluginFolder() + categoryFolder + "\\" + BaseNameOf(plugin.zip);
}

} // namespace vesk
