#include "base/Failure.h"
#include "base/Version.h"
#include "base/modFile.h"
#include "base/modSystemLibrary.h"
#include "base/modText.h"
#include "base/modTrace.h"
#include "base/modWide.h"
#include "build/clsBuildRun.h"
#include "catalogue/clsProgramArchives.h"
#include "catalogue/modCatalogueFile.h"
#include "catalogue/modFolderCheck.h"
#include "console/clsConsoleFrontEnd.h"
#include "console/clsTerminal.h"
#include "console/modCatalogueTable.h"
#include "console/modInterrupt.h"
#include "console/modOptions.h"
#include "source/modSourceFolder.h"
#include "startup/modStartUp.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

namespace {

enum ExitCode : int {
    kDone = 0,
    kDoneWithWarnings = 1,
    kInstallFailed = 2,
    kAborted = 3,
    kRefused = 4,
    kNoPeBuilder = 5,
    kUsage = 64,
    kProgramFailed = 70,
};

/// @return why the entry does not take what the option asks for; nothing when it takes it
std::optional<Problem> Tick(CatalogueEntry& entry, bool enabled) {
    if (entry.lock && entry.enabled != enabled)
        return Problem{entry.name, enabled ? "not ticked" : "not unticked",
                       Quoted(entry.name) + " is locked and stays " +
                           (entry.enabled ? "ticked" : "unticked")};
    entry.enabled = enabled;
    return std::nullopt;
}

/// Ticks or unticks what the options name. @return what had no effect
std::vector<Problem> TickAll(Catalogue& catalogue, const std::vector<std::string>& names,
                             bool enabled, clsTerminal& terminal) {
    std::vector<Problem> problems;
    for (const std::string& name : names) {
        bool found = false;
        for (const EntryList list : {EntryList::BaseComponents, EntryList::Plugins}) {
            for (CatalogueEntry& entry : EntriesOf(catalogue, list)) {
                if (!EqualNoCase(entry.name, name))
                    continue;
                found = true;
                if (const auto problem = Tick(entry, enabled))
                    problems.push_back(*problem);
                if (!enabled && list == EntryList::BaseComponents)
                    terminal.Complain(Quoted(entry.name) +
                                      " is a base component: the build installs it whether it "
                                      "is ticked or not");
            }
        }
        if (!found)
            throw UsageError("the catalogue has no component or plug-in named \"" + name + "\"");
    }
    return problems;
}

/// What the options say of the ticks. @return what the catalogue does not take
std::vector<Problem> ApplyTicks(const ConsoleOptions& options, Catalogue& catalogue,
                                clsTerminal& terminal) {
    std::vector<Problem> problems = TickAll(catalogue, options.enable, true, terminal);
    std::ranges::move(TickAll(catalogue, options.disable, false, terminal),
                      std::back_inserter(problems));
    return problems;
}

/// The Windows source as the options name it, and what it says of itself.
SourceCheck TakeSource(const ConsoleOptions& options, SourceState& source) {
    if (!options.source)
        return {"", true, "", ""};
    try {
        return CheckSourceFolder(AbsolutePath(*options.source), source);
    } catch (const Failure& failure) {
        throw UsageError("--source: " + ReasonOf(failure));
    }
}

/// A folder that holds what no build made is emptied only when the user says so explicitly.
void RequireConsent(const clsInstallFolder& folder, const ConsoleOptions& options) {
    const FolderContent content = folder.Content();
    if (content.kind != FolderContent::Kind::Foreign || options.answer == false)
        return;
    const std::string sentence = folder.Path() + " would be emptied, and ";
    if (const std::string why = folder.WhyKept(content); !why.empty())
        throw UsageError(sentence + why);
    if (!options.replaceForeign)
        throw UsageError(sentence + content.ForeignWords() +
                         "; --replace-foreign empties it anyway");
}

/// Folders as the user's choices make them: the catalogue's own, or what the options name.
BuildInputs MakeInputs(const ConsoleOptions& options, const std::string& programPath,
                       const Catalogue& catalogue, const std::string& sourceFolder,
                       const SourceState& source) {
    if (!options.install && catalogue.installRoot.empty())
        throw UsageError(
            "Windows has no Program Files folder to build in; give a folder with --install");
    const std::string folder =
        options.install.value_or(catalogue.installRoot + "\\" + catalogue.installFolder);
    return {clsInstallFolder(folder, clsFolderGuard::OfSystem(programPath, sourceFolder)),
            sourceFolder, programPath, source, options.replaceForeign};
}

int ExitCodeOf(const BuildOutcome& outcome, bool hasProblems) {
    if (outcome.ending == BuildEnding::InstallFailed)
        return kInstallFailed;
    if (outcome.ending == BuildEnding::Aborted)
        return kAborted;
    if (!outcome.hasPeBuilder)
        return kNoPeBuilder;
    return hasProblems ? kDoneWithWarnings : kDone;
}

int RunBuild(const ConsoleOptions& options, const std::string& programPath, Catalogue& catalogue,
             const CatalogueLoad& load, clsTerminal& terminal) {
    const bool isRead = load.state == CatalogueState::Whole;
    if (const std::string refusal = CatalogueRefusal(catalogue, isRead); !refusal.empty())
        throw UsageError(load.sentence.empty() ? refusal : load.sentence);
    if (!isRead && !options.partial)
        throw UsageError(load.sentence + " --partial builds with what could be read.");
    if (!load.sentence.empty())
        terminal.Complain(load.sentence);
    const std::vector<Problem> locked = ApplyTicks(options, catalogue, terminal);
    SourceState source;
    const SourceCheck check = TakeSource(options, source);
    const BuildInputs inputs = MakeInputs(options, programPath, catalogue, check.path, source);
    RequireConsent(inputs.installFolder, options);
    WatchForInterrupt();
    clsConsoleFrontEnd frontEnd(options, programPath, terminal);
    for (const Problem& problem : locked)
        frontEnd.ReportProblem(problem);
    if (!check.usable)
        frontEnd.ReportProblem(
            {check.path, "not usable as Windows source", "it has no I386 folder of a Windows CD"});
    if (!check.unread.empty())
        frontEnd.ReportProblem({check.path, "product and service pack not read", check.unread});
    const BuildOutcome outcome = clsBuildRun(inputs, catalogue, frontEnd).Run();
    const bool isPrinted = clsTerminal::OutputIsWhole();
    if (!isPrinted)
        terminal.Complain("the log could not be printed in full; the saved one is complete");
    return ExitCodeOf(outcome, frontEnd.HasProblems() || !isRead || !isPrinted);
}

/// Ticks as a build with these options would, for what only shows the catalogue.
/// @return false when the catalogue does not take all of it, which was told
bool TickToShow(const ConsoleOptions& options, Catalogue& catalogue, const CatalogueLoad& load,
                clsTerminal& terminal) {
    if (load.state == CatalogueState::Absent) // which is told; there is nothing to tick
        return true;
    const std::vector<Problem> locked = ApplyTicks(options, catalogue, terminal);
    for (const Problem& problem : locked)
        terminal.Complain(problem.Line());
    return locked.empty();
}

/// Prints the catalogue as a table.
int PrintTable(const ConsoleOptions& options, const std::string& programPath, Catalogue& catalogue,
               const CatalogueLoad& load, clsTerminal& terminal) {
    if (!load.sentence.empty())
        terminal.Complain(load.sentence);
    const bool isTicked = TickToShow(options, catalogue, load, terminal);
    clsProgramArchives archives(programPath);
    const auto stateOf = [&](const CatalogueEntry& entry, const EntryPlace& place) {
        return JudgeArchive(entry, place, archives.Facts(entry.zip));
    };
    terminal.PrintLines(CatalogueTable(catalogue, stateOf));
    return isTicked && load.state == CatalogueState::Whole ? kDone : kDoneWithWarnings;
}

/// Prints what would go wrong in a build, one line each, or what the check covers.
int PrintProblems(const ConsoleOptions& options, const std::string& programPath,
                  Catalogue& catalogue, const CatalogueLoad& load, clsTerminal& terminal) {
    if (!load.sentence.empty())
        terminal.PrintLine(load.sentence);
    if (load.state == CatalogueState::Absent)
        return kDoneWithWarnings;
    const bool isTicked = TickToShow(options, catalogue, load, terminal);
    ExtractionOwner owner;
    owner.password = [&options](bool wrongBefore) {
        return wrongBefore ? std::nullopt : options.password;
    };
    const CatalogueCheck check = CheckCatalogueFile(programPath, catalogue, owner);
    for (const CatalogueProblem& problem : check.problems)
        terminal.PrintLine(problem.Line());
    if (load.state != CatalogueState::Whole || !check.problems.empty())
        return kDoneWithWarnings;
    terminal.PrintLine(check.Verdict());
    return isTicked ? kDone : kDoneWithWarnings;
}

/// Nothing is read from a folder that only seems to be the program's own.
CatalogueLoad LoadFrom(const std::string& programPath, Catalogue& catalogue) {
    const auto unfit = FindProgramFolderFault();
    if (!unfit)
        return LoadCatalogueReporting(programPath, catalogue);
    const std::string fault = programPath + kCatalogueFileName + ": " + unfit->what;
    return {CatalogueState::Absent, fault + ". " + unfit->advice, true, fault};
}

int RunAction(const ConsoleOptions& options, clsTerminal& terminal) {
    if (options.action == ConsoleOptions::Action::Help) {
        terminal.PrintLines(HelpText());
        return kDone;
    }
    if (options.action == ConsoleOptions::Action::Version) {
        terminal.PrintLine(std::string(kProductName) + " " + kVersionText);
        return kDone;
    }
    const StartRefusal refusal = CheckSystem(WindowsProbe());
    if (refusal != StartRefusal::None) {
        terminal.Complain(RefusalText(refusal));
        return kRefused;
    }
    const std::string programPath = FindProgramPaths().programPath;
    Catalogue catalogue;
    const CatalogueLoad load = LoadFrom(programPath, catalogue);
    if (options.action == ConsoleOptions::Action::Check)
        return PrintProblems(options, programPath, catalogue, load, terminal);
    if (options.action == ConsoleOptions::Action::List)
        return PrintTable(options, programPath, catalogue, load, terminal);
    return RunBuild(options, programPath, catalogue, load, terminal);
}

/// The words behind the program's name. As narrow ones they would come with similar characters in
/// place of those that the system's code page lacks: the name of another folder.
std::vector<std::string> Arguments(int count, const wchar_t* const* words) {
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) {
        const auto exact = NarrowedExactly(words[i]);
        if (!exact)
            throw UsageError("the system's code page cannot hold \"" + Narrowed(words[i]) + "\"");
        arguments.push_back(*exact);
    }
    return arguments;
}

int Main(int count, const wchar_t* const* words) {
    // A line that nobody reads costs as much as an exception: it is one.
    if (IsDebuggerPresent() != FALSE)
        SetTraceSink(
            [](const std::string& line) { OutputDebugStringA(("vesk: " + line).c_str()); });
    try {
        PrepareProcess();
        const ConsoleOptions options = ParseOptions(Arguments(count, words));
        clsTerminal terminal(options.quiet);
        const int code = RunAction(options, terminal);
        if (options.action == ConsoleOptions::Action::Build || clsTerminal::OutputIsWhole())
            return code;
        terminal.Complain("what was asked for could not be printed in full");
        return std::max<int>(code, kDoneWithWarnings);
    } catch (const UsageError& error) {
        clsTerminal(true).Complain(std::string(error.what()) + " (see veskbuild --help)");
        return kUsage;
    } catch (const FolderRefused& error) {
        clsTerminal(true).Complain(error.what());
        return kUsage;
    } catch (const std::exception& error) {
        clsTerminal(true).Complain(std::string("the program itself failed: ") + error.what());
        return kProgramFailed;
    }
}

} // namespace

} // namespace vesk

int wmain(int count, wchar_t** words) {
    vesk::LoadFromSystemOnly();
    vesk::OnMissingLibrary([](const char* library) {
        std::fprintf(stderr, "veskbuild: the program itself failed: %s cannot be loaded\n",
                     library);
        std::fflush(stderr);
        std::_Exit(vesk::kProgramFailed);
    });
    return vesk::Main(count, words);
}
