#pragma once

#include "base/modResumeNext.h"
#include "build/BuildFrontEnd.h"
#include "build/clsBuildRun.h"
#include "catalogue/Catalogue.h"
#include "catalogue/clsSha256List.h"

#include <string>
#include <utility>
#include <vector>

namespace vesk {

/// One plug-in of the menu file.
struct MenuRecord {
    std::string name;
    std::string cat;
    std::vector<std::string> infs; ///< Full paths of its INF files.
};

/// What the steps of one build run share.
struct clsBuildContext {
    const BuildInputs& inputs;
    Catalogue& catalogue;
    BuildFrontEnd& frontEnd;
    std::vector<MenuRecord> menuRecords;
    ProblemReport report; ///< Goes to the front end.
    const clsSha256List& sha256;

    /// Adds an ordinary line to the build log.
    void Log(const std::string& line) const { frontEnd.AddLogLine(line, LogMode::Line); }

    /// Shows what is being done, in a few words.
    void Status(const std::string& caption) const { frontEnd.SetStatus(caption); }

    /// This context for a step that is run for its log lines only: it reports nothing.
    [[nodiscard]] clsBuildContext Silent() const {
        return {inputs, catalogue, frontEnd, {}, [](const Problem&) {}, sha256};
    }

    /// Shows a status and lets it be seen before what it announces begins.
    void Announce(const std::string& caption) const {
        Status(caption);
        frontEnd.LetEventsRun();
    }

    /// Logs a warning about a component's archive.
    void Warn(const CatalogueEntry& component, const std::string& words) const {
        Log("Warning: " + component.zip + words);
    }

    /// Where the component's archive is, or would be downloaded to.
    [[nodiscard]] std::string ArchivePath(const CatalogueEntry& component) const {
        return inputs.programPath + component.zip;
    }

    /// Marks the build tree as unfinished. The mark is no part of what the user asked for: where it
    /// cannot be made, what follows fails and is reported.
    void MarkTree() const;

    /// Runs a statement that may fail, see vesk::ResumeNext.
    template <class Statement>
    bool ResumeNext(const Attempt& attempt, Statement&& statement) const {
        return vesk::ResumeNext(report, attempt, std::forward<Statement>(statement));
    }

    /// The install folder's path and its plug-in folder, without a trailing backslash.
    [[nodiscard]] const std::string& InstallFolder() const { return inputs.installFolder.Path(); }
    [[nodiscard]] std::string PluginFolder() const { return inputs.installFolder.PluginFolder(); }
};

} // namespace vesk
