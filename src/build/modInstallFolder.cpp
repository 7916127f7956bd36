#include "base/Failure.h"
#include "base/modFile.h"
#include "base/modSpecialFolder.h"
#include "base/modText.h"
#include "build/clsBuildRun.h"

#include <windows.h>

#include <array>
#include <string>

namespace vesk {

namespace {

/// One spelling for one folder: absolute, long names, lower case, no backslash at the end.
std::string Canonical(const std::string& path) {
    std::string absolute = AbsolutePath(path);
    std::array<char, MAX_PATH * 4> longForm{};
    const DWORD length =
        GetLongPathNameA(absolute.c_str(), longForm.data(), static_cast<DWORD>(longForm.size()));
    if (length != 0 && length < longForm.size())
        absolute.assign(longForm.data(), length);
    CharLowerBuffA(absolute.data(), static_cast<DWORD>(absolute.size()));
    return WithoutTrailingBackslash(absolute);
}

bool Holds(const std::string& folder, const std::string& path) {
    return !path.empty() &&
           WithTrailingBackslash(Canonical(path)).starts_with(WithTrailingBackslash(folder));
}

/// "C:" or "\\server\share": what Canonical leaves of a root.
bool IsRoot(const std::string& folder) {
    if (!folder.starts_with("\\\\"))
        return folder.size() <= 2;
    const std::size_t share = folder.find('\\', 2);
    return share == std::string::npos || folder.find('\\', share + 1) == std::string::npos;
}

std::string HeldThing(const std::string& folder, const BuildInputs& inputs) {
    if (Holds(folder, inputs.programPath))
        return "this program";
    if (Holds(folder, inputs.sourceFolder))
        return "the Windows source";
    struct {
        SpecialFolder folder;
        const char* name;
    } constexpr kGuarded[] = {{SpecialFolder::Windows, "Windows"},
                              {SpecialFolder::ProgramFiles, "Program Files"},
                              {SpecialFolder::UserProfile, "your user profile"},
                              {SpecialFolder::Documents, "your documents"},
                              {SpecialFolder::Desktop, "your desktop"}};
    for (const auto& guarded : kGuarded) {
        if (Holds(folder, SpecialFolderPath(guarded.folder)))
            return guarded.name;
    }
    return {};
}

} // namespace

std::string InstallFolderProblem(const BuildInputs& inputs) {
    const std::string& chosen = inputs.installFolder;
    if (WithoutTrailingBackslash(TrimBlanks(chosen)).empty())
        return "No installation folder is named.";
    try {
        const std::string folder = Canonical(chosen);
        if (IsRoot(folder))
            return "The installation folder is emptied before a build, so it cannot be a whole "
                   "drive: " +
                   chosen;
        if (FileExists(folder))
            return "The installation folder is a file: " + chosen;
        const std::string held = HeldThing(folder, inputs);
        if (!held.empty())
            return "The installation folder is emptied before a build, and this one holds " + held +
                   ": " + chosen;
    } catch (const Failure& failure) {
        return failure.what();
    }
    return {};
}

} // namespace vesk
