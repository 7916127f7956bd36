#pragma once

#include <optional>
#include <string>

namespace vesk {

/// Paths fixed at start-up; both end in "\".
struct ProgramPaths {
    std::string programPath; ///< The running program's own folder.

    /// The environment variable Temp; "\" when that is unset. For whoever wants to put something
    /// there: the program itself writes everything next to where it belongs.
    std::string temporaryPath;
};

/// Asks the system for both. Nothing is made or checked.
ProgramPaths FindProgramPaths();

/// Why the program cannot work from the folder that it is in.
struct ProgramFolderFault {
    std::string what;     ///< A sentence without a full stop.
    std::string advice;   ///< A sentence.
    std::wstring program; ///< Full path of the running program.
};

/// The program works with paths in the system's code page, and with short ones. A folder whose name
/// the code page cannot hold reaches it as another one, under which nothing is found, or somebody
/// else's catalogue. @return nothing when the folder is fit
std::optional<ProgramFolderFault> FindProgramFolderFault();

/// Sets what belongs to the process as a whole: texts are in the system's code page, and a drive
/// without a disk answers with an error. The system's own box about that would stop a scan of all
/// drives at each empty card reader, and an unattended build for ever.
void PrepareProcess();

/// Value of an environment variable, cut at 254 characters; empty when unset.
std::string ReadEnvironmentVariable(const std::string& name);

/// Why the program refuses to start.
enum class StartRefusal { None, NotWindowsNt, NotAdministrator, RightsUnknown };

/// What the start-up checks ask of the system; tests answer in its place.
struct SystemProbe {
    bool (*isWindowsNt)();
    std::optional<bool> (*isAdministrator)(); ///< Nothing when the system does not say.
};

/// The probe that asks Windows itself.
SystemProbe WindowsProbe();

/// The first reason not to start: the kind of Windows is asked for before the user.
StartRefusal CheckSystem(const SystemProbe& probe);

/// The sentence for a refusal.
std::string RefusalText(StartRefusal refusal);

} // namespace vesk
