#include "build/clsBuildRun.h"

#include "archive/clsCRC.h"
#include "archive/clsCab.h"
#include "archive/modUnzip.h"
#include "base/Failure.h"
#include "base/ResumeNext.h"
#include "base/modDate.h"
#include "base/modFile.h"
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

namespace vesk {

namespace {

constexpr const char* kPeBuilderArchive = "pebuilder3110a.zip";

bool SystemIsConnected() {
    DWORD flags = 0;
    return InternetGetConnectedState(&flags, 0) != FALSE;
}

/// Keeps the front end alive while a cabinet is extracted.
class CabOwner : public CabEvents {
public:
    explicit CabOwner(BuildFrontEnd& frontEnd) : frontEnd_(frontEnd) {}
    void OnAfterExtract(const std::string&) override { frontEnd_.LetEventsRun(); }

private:
    BuildFrontEnd& frontEnd_;
};

std::string WarningLine(const CatalogueEntry& component, const std::string& what) {
    return "Warning: " + component.zip + what;
}

} // namespace

/// The steps of a run, in the order in which they are called.
class clsBuildRun::Steps {
public:
    Steps(const BuildInputs& inputs, Catalogue& catalogue, BuildFrontEnd& frontEnd)
        : inputs_(inputs),
          catalogue_(catalogue),
          frontEnd_(frontEnd),
          context_{inputs, catalogue, frontEnd, {}} {}

    std::function<bool()> networkIsConnected = SystemIsConnected;

    BuildEnding Run() {
        const BuildEnding ending = RunToEnding();
        context_.Status("Done");
        frontEnd_.EnterFinishedState(ending);
        return ending;
    }

private:
    enum class PeBuilder { GoOn, NoNetwork, WrongArchive };

    BuildEnding RunToEnding();
    bool MayReplaceFolder();
    void LogHeader();
    PeBuilder FetchPeBuilder();
    DownloadResult Download(const CatalogueEntry& component);
    bool RemoveOldTree();
    void InstallBaseComponents();
    void InstallBaseComponent(std::size_t index);
    void CreateTree();
    void Extract(const CatalogueEntry& component, const std::string& folder);
    void RunBaseScript(std::size_t index);
    void DownloadPlugins();
    void InstallPlugins();
    void InstallPlugin(const CatalogueEntry& plugin);
    std::string PluginOwnFolder(const CatalogueEntry& plugin) const;

    [[nodiscard]] std::string ArchivePath(const CatalogueEntry& component) const {
        return inputs_.programPath + component.zip;
    }
    [[nodiscard]] std::string FileCrc(const std::string& path) {
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
    void ComponentDone() { frontEnd_.SetProgress(++componentsDone_, componentCount_); }

    const BuildInputs& inputs_;
    Catalogue& catalogue_;
    BuildFrontEnd& frontEnd_;
    BuildContext context_;
    /// Scripts that hold a part for the plug-ins, by the index of their base component. Collected
    /// for that stage; the run itself does nothing with them.
    std::map<std::size_t, std::string> pendingScripts_;
    std::size_t componentsDone_ = 0;
    std::size_t componentCount_ = 0;
};

BuildEnding clsBuildRun::Steps::RunToEnding() {
    const auto abort = [this] { return LogEnding("Aborted", BuildEnding::Aborted); };
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
    if (frontEnd_.StopRequested() || !RemoveOldTree())
        return abort();
    InstallBaseComponents();
    DownloadPlugins();
    InstallPlugins();
    if (frontEnd_.StopRequested())
        return abort();
    FinishTree(context_);
    return LogEnding("Done", BuildEnding::Done);
}

bool clsBuildRun::Steps::MayReplaceFolder() {
    const std::string problem = InstallFolderProblem(inputs_);
    if (!problem.empty()) {
        context_.Log("ERROR: " + problem);
        return false;
    }
    if (!FolderExists(inputs_.installFolder))
        return true;
    context_.Status("Confirmation");
    return frontEnd_.AskYesNo("Project folder allready exists. Do you want to continue",
                              "Confirmation");
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
    context_.Log("Intallation path: " + inputs_.installFolder);
    context_.Log("Source path: " + (inputs_.source.valid ? inputs_.sourceFolder : "Invalid"));
    frontEnd_.SetProgress(0, componentCount_);
    frontEnd_.LetEventsRun();
}

clsBuildRun::Steps::PeBuilder clsBuildRun::Steps::FetchPeBuilder() {
    if (catalogue_.baseComponents.empty())
        return PeBuilder::GoOn;
    const CatalogueEntry& component = catalogue_.baseComponents.front();
    if (FileCrc(inputs_.programPath + kPeBuilderArchive) == component.crc) {
        context_.Log("Skipping download of: PEBuilder v3.1.1.0a");
        return PeBuilder::GoOn;
    }
    if (!networkIsConnected()) {
        context_.Log("ERROR: no network connection, download failed");
        return PeBuilder::NoNetwork;
    }
    Announce(std::string("Downloading: ") + kPeBuilderArchive);
    if (Download(component) != DownloadResult::CrcDiffers)
        return PeBuilder::GoOn;
    context_.Log(WarningLine(component, " CRC failed, setup cannot continue !!!"));
    return PeBuilder::WrongArchive;
}

/// Downloads a component and logs a failure or a cancel; a difference of the CRC is the caller's to
/// tell. What is not good does not stay.
DownloadResult clsBuildRun::Steps::Download(const CatalogueEntry& component) {
    context_.Log("Downloading: " + component.zip);
    const std::string archive = ArchivePath(component);
    DownloadResult result = DownloadResult::Failed;
    ResumeNext([&] { result = frontEnd_.DownloadFile(component.url, archive, component.crc); });
    if (result != DownloadResult::Done && FileExists(archive))
        ResumeNext([&] { DeleteFileLogged(context_, archive); });
    if (result == DownloadResult::Failed)
        context_.Log(WarningLine(component, " could not be downloaded. !!!"));
    if (result == DownloadResult::Cancelled)
        context_.Log("Warning: download cancelled by user. !!!");
    return result;
}

/// @return false when the run must not go on: a link that could not be removed would lead what the
/// run writes next to some place outside the folder that the user named
bool clsBuildRun::Steps::RemoveOldTree() {
    context_.Status("Removing directory");
    context_.Log("Removing directory: " + inputs_.installFolder);
    frontEnd_.LetEventsRun();
    ResumeNext([&] { DeleteFolderLogged(context_, inputs_.installFolder); });
    if (!HoldsLink(inputs_.installFolder))
        return true;
    context_.Log("ERROR: a link in the old folder could not be removed: " + inputs_.installFolder);
    return false;
}

void clsBuildRun::Steps::InstallBaseComponents() {
    for (std::size_t i = 0; i < catalogue_.baseComponents.size(); ++i) {
        if (frontEnd_.StopRequested())
            return;
        InstallBaseComponent(i);
        ComponentDone();
    }
}

void clsBuildRun::Steps::InstallBaseComponent(std::size_t index) {
    const CatalogueEntry& component = catalogue_.baseComponents[index];
    const std::string archive = ArchivePath(component);
    const bool isPeBuilder = index == 0;
    if (!FileExists(archive)) {
        context_.Log("Archive: " + archive + " [not found]");
        return;
    }
    if (isPeBuilder)
        CreateTree();
    Announce("Processing: " + component.zip);
    if (FileCrc(archive) == component.crc) {
        Extract(component, inputs_.installFolder);
        context_.Log("");
        RunBaseScript(index);
    } else {
        context_.Log(WarningLine(component, " CRC failed. !!!"));
    }
    if (isPeBuilder) {
        WriteSettingsFile(context_);
        PruneStockPlugins(context_);
    }
}

void clsBuildRun::Steps::CreateTree() {
    const std::string& pluginFolder = catalogue_.pluginFolder;
    ResumeNext([&] { CreateFolderLogged(context_, inputs_.installFolder); });
    ResumeNext([&] { CreateFolderLogged(context_, pluginFolder); });
    for (const CategoryRecord& category : catalogue_.categories)
        ResumeNext([&] { CreateFolderLogged(context_, pluginFolder + "\\" + category.value); });
    context_.Log("");
    if (!catalogue_.showCategories)
        return;
    for (const CategoryRecord& category : catalogue_.categories) {
        const std::string inf = "\\" + category.value + "\\" + category.value + ".inf";
        ResumeNext([&] { CreateCategorySeparator(context_, inf, category.key, category.caption); });
    }
    context_.Log("");
}

void clsBuildRun::Steps::Extract(const CatalogueEntry& component, const std::string& folder) {
    const std::string archive = ArchivePath(component);
    context_.Log("Archive:  " + archive);
    const std::string extension = LowerCase(ExtensionOf(archive));
    ResumeNext([&] {
        if (extension == "cab") {
            CabOwner owner(frontEnd_);
            clsCab cab(&owner);
            cab.CabName = archive;
            cab.DestinationFolder = folder;
            cab.Extract();
        } else if (extension == "zip") {
            UnzipCallbacks callbacks;
            callbacks.letEventsRun = [this] { frontEnd_.LetEventsRun(); };
            UnzipFile(archive, folder, callbacks);
        }
    });
}

void clsBuildRun::Steps::RunBaseScript(std::size_t index) {
    std::string pattern = "*.script";
    const std::vector<std::string> scripts = FindFiles(inputs_.installFolder + "\\", pattern);
    if (scripts.empty())
        return;
    const std::string& script = scripts.front();
    ResumeNext([&] {
        ProcessScript(script, "[base]",
                      {[this](const std::string& line) { context_.Log(line); },
                       inputs_.installFolder, inputs_.sourceFolder});
    });
    bool hasPluginPart = false;
    ResumeNext([&] { hasPluginPart = IsLineInFile(script, "[plugins]"); });
    if (hasPluginPart)
        pendingScripts_[index] = script;
    else
        ResumeNext([&] { DeleteFileLogged(context_, script); });
}

void clsBuildRun::Steps::DownloadPlugins() {
    for (const CatalogueEntry& plugin : catalogue_.plugins) {
        if (!plugin.enabled || plugin.url.empty() || FileExists(ArchivePath(plugin)))
            continue;
        if (frontEnd_.StopRequested())
            return;
        Announce("Downloading: " + plugin.zip);
        if (Download(plugin) == DownloadResult::CrcDiffers)
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
    const std::string archive = ArchivePath(plugin);
    if (!FileExists(archive)) {
        context_.Log("Archive: " + archive + " [not found]");
        context_.Log("");
        return;
    }
    if (FileCrc(archive) != plugin.crc) {
        context_.Log(WarningLine(plugin, " CRC failed. !!!"));
        return;
    }
    Announce("Processing: " + plugin.zip);
    const std::string folder = PluginOwnFolder(plugin);
    Extract(plugin, folder);
    std::string pattern; // the search's own default: INF files
    for (const std::string& inf : FindFiles(folder + "\\", pattern)) {
        ResumeNext([&] { PrefixPluginName(context_, inf, plugin.cat); });
        ResumeNext([&] { CommentOutAppendMenu(context_, inf); });
        ResumeNext([&] { SetPluginEnable(context_, inf); });
    }
}

/// A plug-in whose category is unknown goes straight below the plug-in folder.
std::string clsBuildRun::Steps::PluginOwnFolder(const CatalogueEntry& plugin) const {
    const auto category =
        std::ranges::find(catalogue_.categories, plugin.cat, &CategoryRecord::key);
    const std::string categoryFolder =
        category == catalogue_.categories.end() ? "" : "\\" + category->value;
    return catalogue_.pluginFolder + categoryFolder + "\\" + BaseNameOf(plugin.zip);
}

clsBuildRun::clsBuildRun(const BuildInputs& inputs, Catalogue& catalogue, BuildFrontEnd& frontEnd)
    : steps_(std::make_unique<Steps>(inputs, catalogue, frontEnd)) {}

clsBuildRun::~clsBuildRun() = default;

void clsBuildRun::SetNetworkProbe(std::function<bool()> isConnected) {
    steps_->networkIsConnected = std::move(isConnected);
}

BuildEnding clsBuildRun::Run() {
    return steps_->Run();
}

} // namespace vesk
