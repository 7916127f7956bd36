#include "build/clsBuildRun.h"

#include "archive/modArchiveName.h"
#include "base/Failure.h"
#include "base/Version.h"
#include "base/modDate.h"
#include "base/modFile.h"
#include "build/clsArchiveFetcher.h"
#include "build/clsBuildContext.h"
#include "build/clsComponentInstaller.h"
#include "build/modArchiveFault.h"
#include "build/modFileOperations.h"
#include "build/modFinishing.h"
#include "catalogue/modArchiveState.h"
#include "net/modConnection.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <optional>
#include <utility>

namespace vesk {

/// The steps of a run, in the order in which they are called.
class clsBuildRun::Steps {
public:
    Steps(const BuildInputs& inputs, Catalogue& catalogue, BuildFrontEnd& frontEnd)
        : inputs_(inputs),
          catalogue_(catalogue),
          frontEnd_(frontEnd),
          sha256_(inputs.programPath),
          context_{inputs,
                   catalogue,
                   frontEnd,
                   {},
                   [this](const Problem& problem) {
                       ++outcome_.problems;
                       frontEnd_.ReportProblem(problem);
                   },
                   sha256_} {}

    std::function<bool()> networkIsConnected = SystemIsConnected;
    std::function<void()> noteFolder; ///< Called whenever the tree may have been made.

    BuildOutcome Run() {
        try {
            outcome_.ending = RunToEnding();
        } catch (const std::exception& failure) {
            // Nothing but a failure of the program itself comes here. The log is saved all the
            // same.
            Give(context_.InstallFolder(), "not finished", ReasonOf(failure));
            outcome_.ending = LogEnding("Aborted", BuildEnding::Aborted);
            frontEnd_.EnterFinishedState(outcome_);
            throw;
        }
        if (outcome_.ending == BuildEnding::Done && outcome_.treeMade)
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
    [[nodiscard]] std::string WhyKept(const FolderContent& content) const;
    [[nodiscard]] std::string ChangeSinceAsked() const;
    void LogHeader();
    PeBuilder FetchPeBuilder();
    bool RemoveOldTree();
    void InstallBaseComponents();
    void DownloadPlugins();
    void InstallPlugins();

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
    /// @param missing why it is not in the tree; that it could not be downloaded says more
    void NotePeBuilder(const std::string& missing) {
        outcome_.hasPeBuilder = missing.empty();
        if (outcome_.reason.empty())
            outcome_.reason = missing;
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
    std::optional<FolderIdentity> asked_; ///< The folder that the user was asked about.
    FolderContent::Kind before_ = FolderContent::Kind::Missing; ///< What was in it then.
    clsSha256List sha256_;
    clsBuildContext context_;
    clsArchiveFetcher fetcher_{context_};
    clsComponentInstaller installer_{context_, fetcher_,
                                     [this](double fraction) { ShowProgress(fraction); }};
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
    std::ranges::for_each(sha256_.Problems(), context_.report);
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
    if (const std::string why = WhyKept(content); !why.empty()) {
        Give(path, "not built", why);
        return false;
    }
    asked_ = inputs_.installFolder.Identity();
    before_ = content.kind;
    frontEnd_.LetEventsRun();
    if (content.kind == FolderContent::Kind::Missing)
        return true;
    context_.Status("Confirmation");
    // Spelled so since the first version; users and their guides know the question by this text.
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
    if (ArchiveFault(context_, inputs_.programPath + kFirstArchiveName, component).empty()) {
        context_.Log("Skipping download of: PEBuilder v3.1.1.0a");
        return PeBuilder::GoOn;
    }
    if (!networkIsConnected()) {
        context_.Log("ERROR: no network connection, download failed");
        Give(kFirstArchiveName, "not downloaded",
             "there is no network connection, and nothing was changed");
        return PeBuilder::NoNetwork;
    }
    context_.Announce(std::string("Downloading: ") + kFirstArchiveName);
    const DownloadOutcome outcome = fetcher_.Fetch(component);
    if (outcome.result != DownloadResult::Done)
        outcome_.reason = component.zip + " was not downloaded, " + outcome.reason;
    if (outcome.result != DownloadResult::CrcDiffers)
        return PeBuilder::GoOn;
    context_.Warn(component, " CRC failed, setup cannot continue !!!");
    return PeBuilder::WrongArchive;
}

/// Why what is in the folder must stay; empty when it may be emptied.
std::string clsBuildRun::Steps::WhyKept(const FolderContent& content) const {
    const std::string why = inputs_.installFolder.WhyKept(content);
    const bool isAgreed = content.kind != FolderContent::Kind::Foreign || inputs_.replaceForeign;
    return why.empty() && !isAgreed ? content.ForeignWords() : why;
}

/// Why the folder must not be emptied although the user said so: a download may have taken an hour
/// since, and another program may have put another folder there.
std::string clsBuildRun::Steps::ChangeSinceAsked() const {
    const clsInstallFolder& folder = inputs_.installFolder;
    if (const std::string objection = folder.Objection(); !objection.empty())
        return AsReason(objection);
    const FolderContent content = folder.Content();
    if (std::string why = WhyKept(content); !why.empty())
        return why;
    const auto now = folder.Identity();
    if (asked_ && now && *asked_ != *now)
        return "another folder took its place after the build began";
    // Whatever the user allowed to be emptied, it was not this.
    using Kind = FolderContent::Kind;
    if (content.kind != Kind::Missing && content.kind != Kind::Empty) {
        if (before_ == Kind::Missing)
            return "it was made while the build ran";
        if (before_ == Kind::Empty)
            return "it was filled while the build ran";
    }
    return {};
}

/// @return false when the run must not go on: a link that could not be removed would lead what the
/// run writes next to some place outside the folder that the user named
bool clsBuildRun::Steps::RemoveOldTree() {
    const clsInstallFolder& folder = inputs_.installFolder;
    context_.Status("Removing directory");
    context_.Log("Removing directory: " + folder.Path());
    frontEnd_.LetEventsRun();
    if (const std::string change = ChangeSinceAsked(); !change.empty()) {
        Give(folder.Path(), "not built", change);
        return false;
    }
    if (FolderExists(folder.Path()))
        context_.MarkTree();
    DeleteFolderLogged(context_, clsRemovableTree::Of(folder));
    if (!HoldsLink(folder.Path()))
        return true;
    context_.Log("ERROR: a link in the old folder could not be removed: " + folder.Path());
    Give(folder.Path(), "not built", "a link in the old folder could not be removed");
    return false;
}

void clsBuildRun::Steps::InstallBaseComponents() {
    for (std::size_t i = 0; i < catalogue_.baseComponents.size(); ++i) {
        if (frontEnd_.StopRequested())
            return;
        const std::string missing = installer_.InstallBaseComponent(i);
        noteFolder();
        if (i == 0)
            NotePeBuilder(missing);
        ComponentDone();
    }
    installer_.ReportScriptsNotRun();
}

void clsBuildRun::Steps::DownloadPlugins() {
    for (const CatalogueEntry& plugin : catalogue_.plugins) {
        const bool isThere =
            IsPlainArchiveName(plugin.zip) && FileExists(context_.ArchivePath(plugin));
        if (!plugin.enabled || plugin.url.empty() || isThere)
            continue;
        if (frontEnd_.StopRequested())
            return;
        context_.Announce("Downloading: " + plugin.zip);
        if (fetcher_.Fetch(plugin).result == DownloadResult::CrcDiffers)
            context_.Warn(plugin, " CRC failed. !!!");
    }
}

void clsBuildRun::Steps::InstallPlugins() {
    for (const CatalogueEntry& plugin : catalogue_.plugins) {
        if (!plugin.enabled)
            continue;
        if (frontEnd_.StopRequested())
            return;
        installer_.InstallPlugin(plugin);
        ComponentDone();
    }
}

std::string CatalogueRefusal(const Catalogue& catalogue, bool isWhole) {
    // An editor's empty list comes back from its file as one entry without anything in it.
    if (catalogue.baseComponents.empty() || catalogue.baseComponents.front() == CatalogueEntry())
        return "The catalogue has no base component, so there is nothing to build. Start "
               "veskbuilder.exe -setup to make one.";
    // A checksum that was not read matches nothing, and the good archive would be replaced.
    if (!isWhole && catalogue.baseComponents.front().crc.empty())
        return "The catalogue's first base component could not be read in full, so PE Builder's "
               "archive cannot be checked.";
    return {};
}

clsBuildRun::clsBuildRun(const BuildInputs& inputs, Catalogue& catalogue, BuildFrontEnd& frontEnd)
    : lock_(inputs.installFolder), steps_(std::make_unique<Steps>(inputs, catalogue, frontEnd)) {
    steps_->noteFolder = [this] { lock_.NoteFolder(); };
}

clsBuildRun::~clsBuildRun() = default;

void clsBuildRun::SetNetworkProbe(std::function<bool()> isConnected) {
    steps_->networkIsConnected = std::move(isConnected);
}

BuildOutcome clsBuildRun::Run() {
    return steps_->Run();
}

} // namespace vesk
