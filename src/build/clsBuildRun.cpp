#include "build/clsBuildRun.h"

#include "archive/clsCRC.h"
#include "archive/modArchive.h"
#include "base/Failure.h"
#include "base/Trace.h"
#include "base/UniqueHandle.h"
#include "base/modDate.h"
#include "base/modFile.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "build/BuildContext.h"
#include "build/modBuildTree.h"
#include "build/modFileOperations.h"
#include "build/modPluginInf.h"
#include "script/modScript.h"
#include "startup/Version.h"

#include <windows.h>

#include <wininet.h>

#include <algorithm>
#include <map>
#include <set>

namespace vesk {

namespace {

constexpr const char* kPeBuilderArchive = "pebuilder3110a.zip";

bool SystemIsConnected() {
    DWORD flags = 0;
    return InternetGetConnectedState(&flags, 0) != FALSE;
}

std::string WarningLine(const CatalogueEntry& component, const std::string& what) {
    return "Warning: " + component.zip + what;
}

/// An empty checksum means that there was nothing to read, and matches nothing.
bool CrcMatches(const std::string& found, const std::string& expected) {
    return !found.empty() && found == expected;
}

/// Why a file has no checksum.
std::string WhyUnreadable(const std::string& path) {
    const FileHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
    return file ? "it is empty" : AsReason(SystemErrorText(GetLastError()));
}

} // namespace

/// The steps of a run, in the order in which they are called.
class clsBuildRun::Steps {
public:
    Steps(const BuildInputs& inputs, Catalogue& catalogue, BuildFrontEnd& frontEnd)
        : inputs_(inputs),
          catalogue_(catalogue),
          frontEnd_(frontEnd),
          context_{inputs, catalogue, frontEnd, {}, [this](const Problem& problem) {
                       ++outcome_.problems;
                       frontEnd_.ReportProblem(problem);
                   }} {}

    std::function<bool()> networkIsConnected = SystemIsConnected;

    BuildOutcome Run() {
        outcome_.ending = RunToEnding();
        if (outcome_.ending == BuildEnding::Done)
            context_.ResumeNext({context_.InstallFolder(), "still marked as unfinished"},
                                [this] { inputs_.installFolder.Unmark(); });
        context_.Status("Done");
        frontEnd_.EnterFinishedState(outcome_);
        return outcome_;
    }

private:
    enum class PeBuilder { GoOn, NoNetwork, WrongArchive };

    BuildEnding RunToEnding();
    bool MayReplaceFolder();
    void LogHeader();
    PeBuilder FetchPeBuilder();
    DownloadOutcome Download(const CatalogueEntry& component);
    void RemoveLeftovers(const CatalogueEntry& component);
    bool RemoveOldTree();
    void MarkTree();
    void InstallBaseComponents();
    void InstallBaseComponent(std::size_t index);
    void CreateTree();
    bool ArchiveIsThere(const CatalogueEntry& component);
    bool ArchiveIsRight(const CatalogueEntry& component);
    ExtractionOutcome Extract(const CatalogueEntry& component, const std::string& folder);
    void NotePeBuilder(const CatalogueEntry& component, const ExtractionOutcome& outcome);
    void RunBaseScript(std::size_t index);
    void RunScriptSection(const std::string& script);
    void DownloadPlugins();
    void InstallPlugins();
    void InstallPlugin(const CatalogueEntry& plugin);
    void EditInfs(const CatalogueEntry& plugin, const std::string& folder);
    std::string PluginOwnFolder(const CatalogueEntry& plugin) const;

    [[nodiscard]] std::string ArchivePath(const CatalogueEntry& component) const {
        return inputs_.programPath + component.zip;
    }
    [[nodiscard]] std::string FileCrc(const std::string& path) const {
        return clsCRC().CalculateFile(path, [this] { frontEnd_.LetEventsRun(); });
    }
    void Announce(const std::string& caption) {
        context_.Status(caption);
        frontEnd_.LetEventsRun();
    }
    BuildEnding LogEnding(const std::string& words, BuildEnding ending) {
        context_.Log(words + "... [" + GeneralDate() + "]");
        context_.Log("click 'Finish' to exit");
        return ending;
    }
    /// Reports a problem that is the reason why no tree is made.
    void Give(const std::string& place, const std::string& what, const std::string& reason) {
        outcome_.reason = reason;
        context_.report({place, what, reason});
    }
    void ShowProgress(double withinComponent) {
        BuildProgress progress{componentsDone_, componentCount_, 1};
        if (componentsDone_ < componentCount_)
            progress.fraction = (static_cast<double>(componentsDone_) + withinComponent) /
                                static_cast<double>(componentCount_);
        frontEnd_.SetProgress(progress);
    }
    void ComponentDone() {
        ++componentsDone_;
        ShowProgress(0);
    }

    const BuildInputs& inputs_;
    Catalogue& catalogue_;
    BuildFrontEnd& frontEnd_;
    BuildOutcome outcome_;
    BuildContext context_;
    /// Scripts that hold a part for the plug-ins, by the index of their base component. Collected
    /// for that stage; the run itself does nothing with them.
    std::map<std::size_t, std::string> pendingScripts_;
    /// Archives whose download was told of already: that they are then missing is no second
    /// problem.
    std::set<std::string> notFetched_;
    std::size_t componentsDone_ = 0;
    std::size_t componentCount_ = 0;
};

BuildEnding clsBuildRun::Steps::RunToEnding() {
    const auto abort = [this] { return LogEnding("Aborted", BuildEnding::Aborted); };
    const auto stopped = [this] {
        if (!frontEnd_.StopRequested())
            return false;
        Give(context_.InstallFolder(), "not finished", "the user stopped the build");
        return true;
    };
    if (!MayReplaceFolder())
        return abort();
    LogHeader();
    switch (FetchPeBuilder()) {
    case PeBuilder::NoNetwork:
        // Ends as done, not as failed, and nothing is touched: users know the run by its last line.
        return LogEnding("Done", BuildEnding::Done);
    case PeBuilder::WrongArchive:
        return LogEnding("Install failed", BuildEnding::InstallFailed);
    case PeBuilder::GoOn:
        break;
    }
    if (stopped() || !RemoveOldTree())
        return abort();
    outcome_.treeMade = true;
    InstallBaseComponents();
    DownloadPlugins();
    InstallPlugins();
    if (stopped())
        return abort();
    FinishTree(context_);
    return LogEnding("Done", BuildEnding::Done);
}

bool clsBuildRun::Steps::MayReplaceFolder() {
    const std::string& path = context_.InstallFolder();
    if (const std::string refusal = CatalogueRefusal(catalogue_); !refusal.empty()) {
        Give(path, "not built", AsReason(refusal));
        return false;
    }
    const FolderContent content = inputs_.installFolder.Content();
    const bool mayReplaceForeign = inputs_.replaceForeign && !inputs_.installFolder.KeepsForeign();
    if (content.kind == FolderContent::Kind::Foreign && !mayReplaceForeign) {
        Give(path, "not built", content.ForeignWords());
        return false;
    }
    if (content.kind == FolderContent::Kind::Missing)
        return true;
    context_.Status("Confirmation");
    if (frontEnd_.AskYesNo("Project folder allready exists. Do you want to continue",
                           "Confirmation"))
        return true;
    Give(path, "not built", "the question whether to continue was answered No");
    return false;
}

void clsBuildRun::Steps::LogHeader() {
    context_.Log(std::string(kProductName) + " " + kVersionText + " ---- [" + GeneralDate() + "]");
    context_.Log("Base Components:");
    for (const CatalogueEntry& component : catalogue_.baseComponents)
        context_.Log("   " + component.name);
    context_.Log("");
    context_.Log("Plugins:");
    componentCount_ = catalogue_.baseComponents.size();
    for (const CatalogueEntry& plugin : catalogue_.plugins) {
        if (!plugin.enabled)
            continue;
        ++componentCount_;
        context_.Log("   " + plugin.name);
    }
    context_.Log("");
    // Spelled so in every log that users keep and search.
    context_.Log("Intallation path: " + context_.InstallFolder());
    context_.Log("Source path: " + (inputs_.source.valid ? inputs_.sourceFolder : "Invalid"));
    ShowProgress(0);
    frontEnd_.LetEventsRun();
}

clsBuildRun::Steps::PeBuilder clsBuildRun::Steps::FetchPeBuilder() {
    const CatalogueEntry& component = catalogue_.baseComponents.front();
    if (CrcMatches(FileCrc(inputs_.programPath + kPeBuilderArchive), component.crc)) {
        context_.Log("Skipping download of: PEBuilder v3.1.1.0a");
        return PeBuilder::GoOn;
    }
    if (!networkIsConnected()) {
        context_.Log("ERROR: no network connection, download failed");
        Give(kPeBuilderArchive, "not downloaded",
             "there is no network connection, and nothing was changed");
        return PeBuilder::NoNetwork;
    }
    Announce(std::string("Downloading: ") + kPeBuilderArchive);
    const DownloadOutcome outcome = Download(component);
    if (outcome.result != DownloadResult::Done)
        outcome_.reason = component.zip + " was not downloaded, " + outcome.reason;
    if (outcome.result != DownloadResult::CrcDiffers)
        return PeBuilder::GoOn;
    context_.Log(WarningLine(component, " CRC failed, setup cannot continue !!!"));
    return PeBuilder::WrongArchive;
}

/// Downloads a component and logs a failure or a cancel; a difference of the CRC is the caller's to
/// log. What is not good does not stay.
DownloadOutcome clsBuildRun::Steps::Download(const CatalogueEntry& component) {
    context_.Log("Downloading: " + component.zip);
    const std::string archive = ArchivePath(component);
    DownloadOutcome outcome{DownloadResult::Failed, "the front end failed"};
    if (!IsPlainArchiveName(component.zip))
        outcome.reason = "the catalogue's name for it is no plain file name";
    else
        context_.ResumeNext({component.zip, "not downloaded"}, [&] {
            outcome = frontEnd_.DownloadFile({component.url, archive, component.crc});
        });
    if (outcome.result == DownloadResult::Done)
        return outcome;
    context_.report({component.zip, "not downloaded", outcome.reason});
    notFetched_.insert(component.zip);
    RemoveLeftovers(component);
    if (outcome.result == DownloadResult::Failed)
        context_.Log(WarningLine(component, " could not be downloaded. !!!"));
    if (outcome.result == DownloadResult::Cancelled)
        context_.Log("Warning: download cancelled by user. !!!");
    return outcome;
}

/// Removes what a failed download left, with one line for the archive wherever it was written to.
void clsBuildRun::Steps::RemoveLeftovers(const CatalogueEntry& component) {
    if (!IsPlainArchiveName(component.zip))
        return;
    const std::string archive = ArchivePath(component);
    const std::string partial = PartialPath(archive);
    if (!FileExists(archive) && !FileExists(partial))
        return;
    context_.Status("Deleting file");
    context_.Log("Deleting File: " + archive);
    for (const std::string& path : {archive, partial}) {
        if (FileExists(path))
            context_.ResumeNext({path, "not removed"}, [&] { RemoveFile(path); });
    }
}

/// @return false when the run must not go on: a link that could not be removed would lead what the
/// run writes next to some place outside the folder that the user named
bool clsBuildRun::Steps::RemoveOldTree() {
    const clsInstallFolder& folder = inputs_.installFolder;
    context_.Status("Removing directory");
    context_.Log("Removing directory: " + folder.Path());
    frontEnd_.LetEventsRun();
    if (FolderExists(folder.Path()))
        MarkTree();
    DeleteFolderLogged(context_, clsRemovableTree::Of(folder));
    if (!HoldsLink(folder.Path()))
        return true;
    context_.Log("ERROR: a link in the old folder could not be removed: " + folder.Path());
    Give(folder.Path(), "not built", "a link in the old folder could not be removed");
    return false;
}

/// The mark is no part of what the user asked for: where it cannot be made, what follows fails and
/// is told.
void clsBuildRun::Steps::MarkTree() {
    ResumeNext([](const Problem& problem) { Trace(problem.Line()); },
               {context_.InstallFolder(), "not marked as unfinished"},
               [this] { inputs_.installFolder.Mark(); });
}

void clsBuildRun::Steps::InstallBaseComponents() {
    for (std::size_t i = 0; i < catalogue_.baseComponents.size(); ++i) {
        if (frontEnd_.StopRequested())
            return;
        InstallBaseComponent(i);
        ComponentDone();
    }
}

/// Whether a component's archive stands in the program folder; logs and reports when it does not.
bool clsBuildRun::Steps::ArchiveIsThere(const CatalogueEntry& component) {
    const bool plain = IsPlainArchiveName(component.zip);
    if (plain && FileExists(ArchivePath(component)))
        return true;
    context_.Log("Archive: " + ArchivePath(component) + " [not found]");
    if (!notFetched_.contains(component.zip))
        context_.report({component.zip, "not installed",
                         plain ? "there is no such archive in the program folder"
                               : "the catalogue's name for it is no plain file name"});
    return false;
}

/// Whether an archive that is there is the one that the catalogue means; logs and reports when not.
bool clsBuildRun::Steps::ArchiveIsRight(const CatalogueEntry& component) {
    const std::string archive = ArchivePath(component);
    const std::string found = FileCrc(archive);
    if (CrcMatches(found, component.crc))
        return true;
    context_.Log(WarningLine(component, " CRC failed. !!!"));
    context_.report({component.zip, "not installed",
                     found.empty() ? WhyUnreadable(archive)
                                   : "its CRC-32 is " + found + " where the catalogue says " +
                                         (component.crc.empty() ? "nothing" : component.crc)});
    return false;
}

void clsBuildRun::Steps::InstallBaseComponent(std::size_t index) {
    const CatalogueEntry& component = catalogue_.baseComponents[index];
    const bool isPeBuilder = index == 0;
    if (!ArchiveIsThere(component)) {
        if (isPeBuilder && outcome_.reason.empty())
            outcome_.reason = component.zip + " is not in the program folder";
        return;
    }
    if (isPeBuilder)
        CreateTree();
    Announce("Processing: " + component.zip);
    if (ArchiveIsRight(component)) {
        const ExtractionOutcome extracted = Extract(component, context_.InstallFolder());
        if (isPeBuilder)
            NotePeBuilder(component, extracted);
        context_.Log("");
        RunBaseScript(index);
    } else if (isPeBuilder) {
        outcome_.reason = component.zip + " is not the archive that the catalogue names";
    }
    if (isPeBuilder) {
        WriteSettingsFile(context_);
        PruneStockPlugins(context_);
    }
}

void clsBuildRun::Steps::NotePeBuilder(const CatalogueEntry& component,
                                       const ExtractionOutcome& outcome) {
    const bool opened = outcome.failures.empty() || !outcome.failures.front().member.empty();
    outcome_.hasPeBuilder = opened && outcome.extracted > 0;
    if (!outcome_.hasPeBuilder)
        outcome_.reason = component.zip + " could not be extracted";
    else if (!FileExists(context_.InstallFolder() + "\\pebuilder.exe"))
        context_.report({component.zip, "pebuilder.exe not in the tree",
                         "the shortcuts lead to nothing without it"});
}

void clsBuildRun::Steps::CreateTree() {
    const std::string pluginFolder = context_.PluginFolder();
    const auto create = [this](const std::string& folder) {
        context_.ResumeNext({folder, "not made"}, [&] { CreateFolderLogged(context_, folder); });
    };
    create(context_.InstallFolder());
    MarkTree();
    create(pluginFolder);
    for (const CategoryRecord& category : catalogue_.categories)
        create(pluginFolder + "\\" + category.value);
    context_.Log("");
    if (!catalogue_.showCategories)
        return;
    for (const CategoryRecord& category : catalogue_.categories) {
        const std::string inf = "\\" + category.value + "\\" + category.value + ".inf";
        context_.ResumeNext({pluginFolder + inf, "not written"}, [&] {
            CreateCategorySeparator(context_, inf, category.key, category.caption);
        });
    }
    context_.Log("");
}

ExtractionOutcome clsBuildRun::Steps::Extract(const CatalogueEntry& component,
                                              const std::string& folder) {
    const std::string archive = ArchivePath(component);
    context_.Log("Archive:  " + archive);
    MarkTree();
    ExtractionOwner owner;
    owner.password = [&](bool wrongBefore) {
        return frontEnd_.AskPassword(component.zip, wrongBefore);
    };
    owner.progress = [this](double fraction) {
        ShowProgress(fraction);
        frontEnd_.LetEventsRun();
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

void clsBuildRun::Steps::RunBaseScript(std::size_t index) {
    std::string pattern = "*.script";
    const FoundFiles found =
        FindFiles(context_.InstallFolder() + "\\", pattern, "not searched for scripts");
    std::ranges::for_each(found.problems, context_.report);
    if (found.paths.empty())
        return;
    const std::string& script = found.paths.front();
    RunScriptSection(script);
    bool hasPluginPart = false;
    context_.ResumeNext({script, "not read"},
                        [&] { hasPluginPart = IsLineInFile(script, "[plugins]"); });
    if (hasPluginPart)
        pendingScripts_[index] = script;
    else
        context_.ResumeNext({script, "not removed"}, [&] { DeleteFileLogged(context_, script); });
}

void clsBuildRun::Steps::RunScriptSection(const std::string& script) {
    context_.ResumeNext({script, "not carried out to its end"}, [&] {
        ProcessScript(script, "[base]",
                      {[this](const std::string& line) { context_.Log(line); },
                       [&](const std::string& what, const std::string& reason) {
                           context_.report({script, what, reason});
                       },
                       context_.InstallFolder(), inputs_.sourceFolder});
    });
}

void clsBuildRun::Steps::DownloadPlugins() {
    for (const CatalogueEntry& plugin : catalogue_.plugins) {
        const bool isThere = IsPlainArchiveName(plugin.zip) && FileExists(ArchivePath(plugin));
        if (!plugin.enabled || plugin.url.empty() || isThere)
            continue;
        if (frontEnd_.StopRequested())
            return;
        Announce("Downloading: " + plugin.zip);
        if (Download(plugin).result == DownloadResult::CrcDiffers)
            context_.Log(WarningLine(plugin, " CRC failed. !!!"));
    }
}

void clsBuildRun::Steps::InstallPlugins() {
    for (const CatalogueEntry& plugin : catalogue_.plugins) {
        if (!plugin.enabled)
            continue;
        if (frontEnd_.StopRequested())
            return;
        InstallPlugin(plugin);
        ComponentDone();
    }
}

void clsBuildRun::Steps::InstallPlugin(const CatalogueEntry& plugin) {
    if (!ArchiveIsThere(plugin)) {
        context_.Log("");
        return;
    }
    if (!ArchiveIsRight(plugin))
        return;
    Announce("Processing: " + plugin.zip);
    const std::string folder = PluginOwnFolder(plugin);
    Extract(plugin, folder);
    if (IsInTree(context_, folder))
        EditInfs(plugin, folder);
}

void clsBuildRun::Steps::EditInfs(const CatalogueEntry& plugin, const std::string& folder) {
    std::string pattern; // the search's own default: INF files
    const FoundFiles found = FindFiles(folder + "\\", pattern, "not edited");
    std::ranges::for_each(found.problems, context_.report);
    for (const std::string& inf : found.paths) {
        const Attempt attempt{inf, "not edited"};
        context_.ResumeNext(attempt, [&] { RequireReadable(inf); });
        context_.ResumeNext(attempt, [&] { PrefixPluginName(context_, inf, plugin.cat); });
        context_.ResumeNext(attempt, [&] { CommentOutAppendMenu(context_, inf); });
        context_.ResumeNext(attempt, [&] { SetPluginEnable(context_, inf); });
    }
}

/// A plug-in whose category is unknown goes straight below the plug-in folder.
std::string clsBuildRun::Steps::PluginOwnFolder(const CatalogueEntry& plugin) const {
    const CategoryRecord* const category = FindCategory(catalogue_, plugin.cat);
    const std::string categoryFolder = category == nullptr ? "" : "\\" + category->value;
    return context_.PluginFolder() + categoryFolder + "\\" + BaseNameOf(plugin.zip);
}

std::string CatalogueRefusal(const Catalogue& catalogue) {
    if (catalogue.baseComponents.empty())
        return "The catalogue names no base component, so there is nothing to build. Start "
               "veskbuilder.exe -setup to make one.";
    return {};
}

clsBuildRun::clsBuildRun(const BuildInputs& inputs, Catalogue& catalogue, BuildFrontEnd& frontEnd)
    : lock_(inputs.installFolder), steps_(std::make_unique<Steps>(inputs, catalogue, frontEnd)) {}

clsBuildRun::~clsBuildRun() = default;

void clsBuildRun::SetNetworkProbe(std::function<bool()> isConnected) {
    steps_->networkIsConnected = std::move(isConnected);
}

BuildOutcome clsBuildRun::Run() {
    return steps_->Run();
}

} // namespace vesk
