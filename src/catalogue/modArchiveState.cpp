#include "catalogue/modArchiveState.h"

#include "archive/modArchiveName.h"
#include "base/modText.h"

namespace vesk {

namespace {

/// A build installs every base component; ticks count for plug-ins only.
bool IsIncluded(const CatalogueEntry& entry, const EntryPlace& place) {
    return entry.enabled || place.list == EntryList::BaseComponents;
}

std::string StateWords(const CatalogueEntry& entry, const EntryPlace& place, ArchiveState state) {
    switch (state) {
    case ArchiveState::Good:
        return "good";
    case ArchiveState::Unchecked:
        return "checking";
    case ArchiveState::CrcDiffers:
        return "CRC differs";
    case ArchiveState::OtherSha256:
        return "SHA-256 differs";
    case ArchiveState::NoCrc:
        return "no CRC";
    case ArchiveState::Empty:
        return "empty file";
    case ArchiveState::Missing:
        return "missing";
    case ArchiveState::ToDownload:
        return IsIncluded(entry, place) ? "to download" : "missing, downloaded if ticked";
    case ArchiveState::ToReplace:
        return "not the right one, to download";
    case ArchiveState::BadName:
        return "no file name";
    case ArchiveState::NotPeBuilder:
        return "wrong name";
    case ArchiveState::WrongType:
        return "not .zip or .cab";
    }
    return {};
}

std::string DownloadSentence(const CatalogueEntry& entry, const EntryPlace& place) {
    return IsIncluded(entry, place)
               ? "The archive is not there yet: the build downloads it."
               : "The archive is not there; a build downloads it when the plug-in is ticked.";
}

std::string MissingSentence(const CatalogueEntry& entry, const EntryPlace& place) {
    const std::string start = "The archive is missing from the program folder, and ";
    if (entry.url.empty())
        return start + "there is no address to download it from.";
    return start + (place.list == EntryList::BaseComponents
                        ? "a build downloads no base component but the first."
                        : "no build downloads it.");
}

} // namespace

bool IsMisnamedPeBuilder(const CatalogueEntry& entry, const EntryPlace& place) {
    return place.IsPeBuilder() && !EqualNoCase(entry.zip, kFirstArchiveName);
}

ArchiveState JudgeArchive(const CatalogueEntry& entry, const EntryPlace& place,
                          const ArchiveFacts& facts) {
    if (!facts.plainName)
        return ArchiveState::BadName;
    if (IsMisnamedPeBuilder(entry, place))
        return ArchiveState::NotPeBuilder;
    if (ArchiveKindOf(entry.zip) == ArchiveKind::Neither)
        return ArchiveState::WrongType;
    const bool isFetched =
        !entry.url.empty() && (place.IsPeBuilder() || place.list == EntryList::Plugins);
    if (!facts.isThere && !isFetched)
        return ArchiveState::Missing;
    if (entry.crc.empty())
        return ArchiveState::NoCrc;
    if (!facts.isThere)
        return ArchiveState::ToDownload;
    if (!facts.crc)
        return ArchiveState::Unchecked;
    const bool crcIsRight = *facts.crc == entry.crc;
    if (crcIsRight && facts.sha256Fault.empty())
        return ArchiveState::Good;
    if (place.IsPeBuilder() && isFetched)
        return ArchiveState::ToReplace;
    if (crcIsRight)
        return ArchiveState::OtherSha256;
    return facts.crc->empty() ? ArchiveState::Empty : ArchiveState::CrcDiffers;
}

bool ComesIntoBuild(ArchiveState state) {
    return state == ArchiveState::Good || state == ArchiveState::ToDownload ||
           state == ArchiveState::ToReplace;
}

std::string ArchiveWords(const CatalogueEntry& entry, const EntryPlace& place, ArchiveState state) {
    const bool builtUnticked = !entry.enabled && place.list == EntryList::BaseComponents &&
                               (ComesIntoBuild(state) || state == ArchiveState::Unchecked);
    return StateWords(entry, place, state) + (builtUnticked ? ", built though unticked" : "");
}

std::string ArchiveSentence(const CatalogueEntry& entry, const EntryPlace& place,
                            ArchiveState state) {
    // PE Builder's archive is asked for again, and deleted when that brings none.
    const std::string fate = place.IsPeBuilder()
                                 ? "a build deletes it when it cannot download the right one."
                                 : "it is left out of the build.";
    switch (state) {
    case ArchiveState::Good:
        return "The archive is in the program folder, and its CRC-32 is right.";
    case ArchiveState::Unchecked:
        return "The archive is in the program folder. Its CRC-32 is not checked yet.";
    case ArchiveState::CrcDiffers:
        return "The archive is there, but its CRC-32 differs from the catalogue's: " + fate;
    case ArchiveState::OtherSha256:
        return "The archive is there, but its SHA-256 is not the one in the program folder's "
               "list: " +
               fate;
    case ArchiveState::NoCrc:
        return "The catalogue has no CRC-32 for the archive: " + fate;
    case ArchiveState::Empty:
        return "The archive is there, but it is empty or cannot be read: " + fate;
    case ArchiveState::Missing:
        return MissingSentence(entry, place);
    case ArchiveState::ToDownload:
        return DownloadSentence(entry, place);
    case ArchiveState::ToReplace:
        return "The archive is there, but it is not the right one: the build downloads it again.";
    case ArchiveState::BadName:
        return "The archive's name is " + ArchiveNameFault(entry.zip) +
               ": it is neither downloaded nor extracted.";
    case ArchiveState::NotPeBuilder:
        return std::string("The first base component's archive has to be named ") +
               kFirstArchiveName +
               ": a build looks for that one, and replaces or deletes this one.";
    case ArchiveState::WrongType:
        return "The archive is neither a .zip nor a .cab file: it is neither downloaded nor "
               "extracted.";
    }
    return {};
}

} // namespace vesk
