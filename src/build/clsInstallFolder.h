#pragma once

#include "build/clsFolderGuard.h"
#include "build/clsFolderReader.h"

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>

namespace vesk {

/// A text that cannot become an installation folder; the reason is a sentence for the user.
struct FolderRefused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What is in an installation folder before a build.
struct FolderContent {
    enum class Kind {
        Missing,      ///< There is no such folder.
        Empty,        ///< Nothing in it.
        EarlierBuild, ///< A tree that a build made, whole or not.
        Foreign,      ///< Something that no build made.
    };

    Kind kind = Kind::Missing;
    std::size_t files = 0;   ///< At any depth; kMostCounted when there are more.
    bool unreadable = false; ///< What it holds cannot be read.

    static constexpr std::size_t kMostCounted = 100000;

    /// "it holds 12 files that no build made", for a foreign folder.
    [[nodiscard]] std::string ForeignWords() const;
};

/// A folder that a build may empty; clsRemovableTree takes it and no text. Once made
/// from the user's text it means the same place, also when the current folder changes.
class clsInstallFolder {
public:
    /// Name of the file by which a build marks its tree while it works on it.
    static constexpr const char* kMarkName = "veskbuild.unfinished";

    /// @param text as the user gave it: absolute, or relative to the current folder
    /// @throws FolderRefused for what is not a folder's name, for a place that cannot hold a
    ///         tree, and for a folder that must not be emptied
    clsInstallFolder(const std::string& text, clsFolderGuard guard);

    /// Absolute path, spelled as the user did, without a trailing backslash.
    [[nodiscard]] const std::string& Path() const { return path_; }

    /// Where PE Builder looks for plug-ins.
    [[nodiscard]] std::string PluginFolder() const { return path_ + "\\Plugin"; }

    /// What is in it now. Takes a moment when it holds very many files.
    [[nodiscard]] FolderContent Content() const;

    /// Why this content must not be emptied whatever the user says: what no build made, among
    /// installed programs. "it holds ..." without a full stop; empty when it is the user's to
    /// decide.
    [[nodiscard]] std::string WhyKept(const FolderContent& content) const;

    /// What the system opens under its name now; nothing when it is missing.
    [[nodiscard]] std::optional<FolderIdentity> Identity() const;

    /// Why it must not be emptied now (the disk may have changed since); empty when it may.
    [[nodiscard]] std::string Objection() const;

    /// Marks the folder as a build's own while it is emptied and filled, so that after a run that
    /// was cut off it is known as one. Makes the folder. @throws Failure
    void Mark() const;

    /// Takes the mark away again, once the folder is known as a build's without it. @throws Failure
    void Unmark() const;

private:
    std::string path_;
    clsFolderGuard guard_;
};

} // namespace vesk
