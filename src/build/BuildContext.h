#pragma once

#include "base/ResumeNext.h"
#include "build/BuildFrontEnd.h"
#include "build/clsBuildRun.h"
#include "catalogue/Catalogue.h"

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
struct BuildContext {
    const BuildInputs& inputs;
    Catalogue& catalogue;
    BuildFrontEnd& frontEnd;
    std::vector<MenuRecord> menuRecords;
    ProblemReport report; ///< Tells the front end.

    void Log(const std::string& line) const { frontEnd.AddLogLine(line, LogMode::Line); }
    void Status(const std::string& caption) const { frontEnd.SetStatus(caption); }

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
