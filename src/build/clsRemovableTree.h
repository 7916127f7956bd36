#pragma once

#include "base/Failure.h"

#include <functional>
#include <string>
#include <vector>

namespace vesk {

class clsInstallFolder;

/// A folder that may be removed with everything in it. There are three kinds and no other way to
/// one, so no text can be handed to the removal by mistake.
class clsRemovableTree {
public:
    /// The whole build tree. Its mark stays until the end, so that a removal that is cut off leaves
    /// what is known as a build's.
    static clsRemovableTree Of(const clsInstallFolder& folder);

    /// A folder inside the build tree.
    /// @param relative begins with "\" and names folders only
    /// @throws Failure for a name that leads elsewhere
    static clsRemovableTree Below(const clsInstallFolder& folder, const std::string& relative);

    /// Path of the program's own folder in the start menu of all users, also when it is not there.
    /// Where the system has no such menu nothing stands before its "\".
    static std::string StartMenuPath();

    /// That folder. @throws Failure when the system has no such menu
    static clsRemovableTree StartMenuFolder();

    /// Full path of the folder, without a trailing backslash.
    [[nodiscard]] const std::string& Path() const { return path_; }

    /// Removes it, read-only files too. Junctions and links are removed themselves and never
    /// entered. What cannot be removed does not stop the rest.
    /// @param meanwhile called now and then, so that a window stays alive
    /// @return what could not be removed, with its path as source; empty when nothing is left
    [[nodiscard]] std::vector<Failure> Remove(const std::function<void()>& meanwhile = {}) const;

private:
    clsRemovableTree(std::string path, std::function<std::string()> objection);

    std::string path_;
    std::string lastName_; ///< A file directly in it that goes last; may be empty.
    std::function<std::string()> objection_; ///< Asked again when it comes to it.
};

} // namespace vesk
