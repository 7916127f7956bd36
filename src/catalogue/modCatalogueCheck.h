#pragma once

#include "catalogue/Catalogue.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

enum class CatalogueProblemKind {
    NoName,           ///< An entry without a name.
    ValueTooLong,     ///< Longer than the reader takes; the rest would be cut off.
    ArchiveType,      ///< No archive, or neither .zip nor .cab.
    DuplicateArchive, ///< Two entries with one archive.
    CrcForm,          ///< A checksum that cannot match because of how it is written.
    CrcDiffers,       ///< The archive present has another checksum.
    Address,          ///< An address that the downloader cannot use.
    UnknownCategory,  ///< A plug-in's category key that no category has.
    MissingPrefix,    ///< A category key that PE Builder's stock plug-ins need.
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

/// Checksum (as the catalogue writes it) of an archive that is present, by its file name; empty for
/// one that is not.
using CrcOfArchive = std::function<std::string(const std::string& archiveName)>;

/// What would go wrong in a build of this catalogue; empty when nothing would.
/// @param crcOfArchive may be empty: then no archive is looked at
/// @param sectionNames all names in the catalogue's file, when it comes from one
std::vector<CatalogueProblem> CheckCatalogue(const Catalogue& catalogue,
                                             const CrcOfArchive& crcOfArchive,
                                             const std::vector<std::string>& sectionNames = {});

} // namespace vesk
