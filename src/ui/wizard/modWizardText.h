#pragma once

#include "catalogue/modArchiveState.h"
#include "net/DownloadProgress.h"

#include <cstdint>
#include <string>

/// The longer texts that the wizard's windows show, lines ended by CR LF.
namespace vesk {

/// The welcome text: product and systems, version and legal notice, then the stored text.
std::string WelcomeText(const std::string& versionText, const std::string& legalNotice,
                        const std::string& storedText);

/// What the summary page says of the choices made.
struct SummaryInputs {
    const Catalogue& catalogue;
    std::string installFolder;
    std::string sourceFolder;
    bool sourceValid = false;
};

/// The summary page's text.
std::string SummaryText(const SummaryInputs& inputs);

/// What is said before a build whose tree cannot be used, because PE Builder will not be in it;
/// empty when PE Builder will or may be in it. @param facts of its archive, checksum included
std::string PeBuilderWarning(const CatalogueEntry& peBuilder, const ArchiveFacts& facts);

/// What a build does about an entry's archive, in a few words for a list's column; a locked entry
/// says so.
std::string StateText(const CatalogueEntry& entry, const EntryPlace& place, ArchiveState state);

/// The tool tip of a line: archive, address, CRC, and what a build does about the archive.
std::string EntryTip(const CatalogueEntry& entry, const EntryPlace& place, ArchiveState state);

/// Whether a build includes an entry, and why, when its tick alone does not decide.
std::string InBuildText(const CatalogueEntry& entry, EntryList list, ArchiveState state);

/// Speed of a download and the time it still takes, each as far as known.
/// @param secondsLeft negative while unknown
std::string RateText(double bytesPerSecond, std::int64_t secondsLeft);

/// What a download waits for; its RateText while bytes come.
std::string DownloadDetail(const DownloadProgress& progress);

/// Title of the category that an entry belongs to; its key when the catalogue does not know it.
std::string CategoryTitle(const Catalogue& catalogue, const CatalogueEntry& entry);

} // namespace vesk
