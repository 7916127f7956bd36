#pragma once

#include "catalogue/Catalogue.h"

#include <optional>
#include <string>

namespace vesk {

/// The archive that a build looks for before it downloads the first base component, whatever name
/// the catalogue has for that one.
inline constexpr const char* kFirstArchiveName = "pebuilder3110a.zip";

/// What is known of the archive that an entry names.
struct ArchiveFacts {
    bool plainName = true; ///< The name is that of a file in the program folder.
    bool isThere = false;  ///< There is such a file.

    /// Checksum as the catalogue writes it; empty for a file that holds nothing or cannot be read;
    /// nothing while nobody has computed it.
    std::optional<std::string> crc;

    /// How its SHA-256 differs from the one that it must have; empty where it does not, or none is
    /// asked for.
    std::string sha256Fault = {};

    bool operator==(const ArchiveFacts&) const = default;
};

/// What a build finds of an entry's archive, and what it does about it.
enum class ArchiveState {
    Good,         ///< There, with the catalogue's CRC-32: extracted.
    Unchecked,    ///< There, and its CRC-32 is not computed yet.
    CrcDiffers,   ///< There, with another CRC-32: left out.
    OtherSha256,  ///< There, with the CRC-32, and with another SHA-256 than the list's: left out.
    NoCrc,        ///< The catalogue has no CRC-32 for it, which nothing matches: left out.
    Empty,        ///< There, but nothing can be read from it: left out.
    Missing,      ///< Not there, and no build downloads it: left out.
    ToDownload,   ///< Not there; a build downloads it, in the case of a plug-in when it is ticked.
    ToReplace,    ///< There and not right; the build downloads it again.
    BadName,      ///< Its name cannot be an archive's: neither downloaded nor extracted.
    NotPeBuilder, ///< The first base component's, under another name than a build looks for.
    WrongType,    ///< Neither .zip nor .cab: not extracted.
};

/// True for a first base component whose archive has another name than a build looks for.
bool IsMisnamedPeBuilder(const CatalogueEntry& entry, const EntryPlace& place);

/// The state of an entry's archive, from what is known of the file.
ArchiveState JudgeArchive(const CatalogueEntry& entry, const EntryPlace& place,
                          const ArchiveFacts& facts);

/// True when a build that includes the entry installs it, as far as can be known beforehand:
/// the archive is good, or is to be downloaded.
bool ComesIntoBuild(ArchiveState state);

/// The state in a few words, for a table: "good", "CRC differs", "missing". They say what a build
/// does, so the entry's tick counts: a plug-in is downloaded only when it is ticked, and a base
/// component is built whether it is ticked or not.
std::string ArchiveWords(const CatalogueEntry& entry, const EntryPlace& place, ArchiveState state);

/// The state as a sentence or two: what is there, and what a build does.
std::string ArchiveSentence(const CatalogueEntry& entry, const EntryPlace& place,
                            ArchiveState state);

} // namespace vesk
