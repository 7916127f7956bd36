#pragma once

#include "build/BuildFrontEnd.h"
#include "catalogue/Catalogue.h"
#include "source/SourceState.h"

#include <functional>
#include <memory>
#include <string>

namespace vesk {

/// What a build works on. Read when needed: the front end may show and own the texts.
struct BuildInputs {
    std::string installFolder; ///< Folder of the build tree, without a trailing backslash.
    std::string sourceFolder;  ///< Windows source as its field shows it; may be empty.
    std::string programPath;   ///< The program's own folder, ending in "\".
    SourceState source;
};

/// A sentence on why this installation folder must not be emptied and built into (a drive root, a
/// folder that holds the program or the Windows source); empty when it may.
/// Front ends ask before they start a run.
std::string InstallFolderProblem(const BuildInputs& inputs);

/// The one long procedure that turns catalogue and choices into a build tree. It never ends early
/// because something failed: a failing statement is skipped and the next one runs.
class clsBuildRun {
public:
    /// All three must outlive the run. The run adds the stock plug-ins that it regroups to the
    /// catalogue's plug-ins.
    clsBuildRun(const BuildInputs& inputs, Catalogue& catalogue, BuildFrontEnd& frontEnd);
    clsBuildRun(const clsBuildRun&) = delete;
    clsBuildRun& operator=(const clsBuildRun&) = delete;
    ~clsBuildRun();

    /// Replaces the question to the system whether it has a network connection.
    void SetNetworkProbe(std::function<bool()> isConnected);

    /// Runs from the project-folder question to the closing; then the front end is in its finished
    /// state and saves the log.
    BuildEnding Run();

private:
    class Steps;
    std::unique_ptr<Steps> steps_;
};

} // namespace vesk
