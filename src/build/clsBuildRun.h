#pragma once

#include "build/BuildFrontEnd.h"
#include "build/clsBuildLock.h"
#include "build/clsInstallFolder.h"
#include "catalogue/Catalogue.h"
#include "source/SourceState.h"

#include <functional>
#include <memory>
#include <string>

namespace vesk {

/// What a build works on.
struct BuildInputs {
    clsInstallFolder installFolder; ///< Folder of the build tree.
    std::string sourceFolder;       ///< Windows source as its field shows it; may be empty.
    std::string programPath;        ///< The program's own folder, ending in "\".
    SourceState source;

    /// The user was warned that the folder holds what no build made, and wants it emptied.
    bool replaceForeign = false;
};

/// Why a catalogue cannot be built from at all: a sentence; empty when it can. Front ends ask
/// before they start a run, because a run replaces the old tree.
/// @param isWhole all of the catalogue's file was read
std::string CatalogueRefusal(const Catalogue& catalogue, bool isWhole = true);

/// The one long procedure that turns catalogue and choices into a build tree. A failing statement
/// is skipped and reported, and the next one runs. It ends early only by decisions of its own: when
/// the catalogue has nothing to build, when the user says No or wants it to stop, when the folder
/// must not be emptied or changed under it, when a link in the old tree stays, and when PE
/// Builder's archive cannot be downloaded for want of a network or arrives with the wrong checksum.
class clsBuildRun {
public:
    /// All three must outlive the run. The run adds the stock plug-ins that it regroups to the
    /// catalogue's plug-ins. While the object lives no other one builds into the folder, in this
    /// process or another.
    /// @throws FolderRefused when one does
    clsBuildRun(const BuildInputs& inputs, Catalogue& catalogue, BuildFrontEnd& frontEnd);
    clsBuildRun(const clsBuildRun&) = delete;
    clsBuildRun& operator=(const clsBuildRun&) = delete;
    ~clsBuildRun();

    /// Replaces the question to the system whether it has a network connection.
    void SetNetworkProbe(std::function<bool()> isConnected);

    /// Runs from the project-folder question to the closing; then the front end is in its finished
    /// state and saves the log. To be called once.
    /// @throws what a failure of the program itself threw (std::exception), outside the statements
    ///         that may fail; it is reported as a problem and the log closed as aborted before
    BuildOutcome Run();

private:
    class Steps;
    clsBuildLock lock_;
    std::unique_ptr<Steps> steps_;
};

} // namespace vesk
