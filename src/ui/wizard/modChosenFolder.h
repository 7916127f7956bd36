#pragma once

#include "build/clsInstallFolder.h"

#include <string>

namespace vesk {

/// The installation folder that the user chose, and what stands in it now.
struct ChosenFolder {
    clsInstallFolder folder;
    FolderContent content;

    /// Whether it holds what no build made.
    [[nodiscard]] bool IsForeign() const { return content.kind == FolderContent::Kind::Foreign; }

    /// What is said before a foreign folder is emptied; empty for any other folder.
    [[nodiscard]] std::string Warning() const;
};

/// Looks at the folder that a text means. Takes a moment when it holds very many files.
/// @param sourceFolder the Windows source, which must survive; may be empty
/// @throws FolderRefused for a folder that no build may work in, also for one among installed
///         programs that holds what no build made
ChosenFolder LookAtFolder(const std::string& text, const std::string& programPath,
                          const std::string& sourceFolder);

} // namespace vesk
