#pragma once

#include "catalogue/modArchiveState.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

/// What a problem is about.
enum class CatalogueProblemKind {
    NoName,           ///< An entry without a name.
    ValueForm,        ///< A text that the file does not keep: quotes around it are lost.
    ValueTooLong,     ///< Longer than the reader takes; the rest would be cut off.
    ArchiveType,      ///< No archive, or neither .zip nor .cab.
    ArchiveName,      ///< No archive can have the name: it is neither downloaded nor extracted.
    ArchiveMissing,   ///< Not there, and no build downloads it.
    ArchiveContent,   ///< Something in it would not be extracted.
    DuplicateArchive, ///< Two entries with one archive.
    SameFolder,       ///< Two plug-ins that are extracted into one folder.
    FirstArchive,     ///< The first base component's is not the one that a build looks for.
    NoComponents,     ///< No base component: there is nothing to build.
    TooMany,          ///< More entries than the wizard's lists can be worked with.
    CrcForm,          ///< A checksum that cannot match because of how it is written.
    CrcDiffers,       ///< The archive present has another checksum.
    Address,          ///< An address that the downloader cannot use.
    UnknownCategory,  ///< A plug-in's category key that no category has.
    Category,         ///< A category that the file cannot hold, or whose folder cannot be made.
    MissingPrefix,    ///< A category key that PE Builder's stock plug-ins need.
    InstallFolder,    ///< The installation folder is no folder's name.
    Sha256List,       ///< The list of digests cannot be read, or not in full.
    SectionNames,     ///< More section names than the reader takes.
};

/// One thing that would go wrong in a build.
struct CatalogueProblem {
    CatalogueProblemKind kind{};
    std::string entry;    ///< What it is about: `plug-in "Name"`, or "categories" and the like.
    std::string sentence; ///< What is wrong, for people.
    std::optional<EntryPlace> place; ///< The entry, when it is about one.

    /// Both, as one line.
    [[nodiscard]] std::string Line() const { return entry + ": " + sentence; }
};

/// What the check asks about the archives in the program folder. Nothing is looked at without it.
struct ArchiveSource {
    /// All that is known of an archive, by its file name.
    std::function<ArchiveFacts(const std::string& archiveName)> factsOf;

    /// What an extraction of one that is there would not do, a line each.
    std::function<std::vector<std::string>(const std::string& archiveName)> contentFaultsOf;
};

/// What the check found.
struct CatalogueCheck {
    std::vector<CatalogueProblem> problems;
    std::size_t archivesGood = 0;       ///< Present, with the right checksum.
    std::size_t archivesToDownload = 0; ///< Absent; a build would fetch them.

    /// For a check without problems: what it covers, and what not.
    [[nodiscard]] std::string Verdict() const;
};

/// What would go wrong in a build of this catalogue, in its order: first what is about the whole,
/// then base components and plug-ins.
/// @param sectionNames all names in the catalogue's file, when it comes from one
CatalogueCheck CheckCatalogue(const Catalogue& catalogue, const ArchiveSource& archives,
                              const std::vector<std::string>& sectionNames = {});

} // namespace vesk
