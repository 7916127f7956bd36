#pragma once

#include "catalogue/Catalogue.h"
#include "net/DownloadProgress.h"

#include <cstdint>
#include <string>

/// The longer texts that the wizard's windows show, lines parted by CR LF.
namespace vesk {

/// The welcome text: product and systems, version and legal notice, then the stored text.
std::string WelcomeText(const std::string& versionText, const std::string& legalNotice,
                        const std::string& storedText);

/// What the summary page tells of the choices made.
struct SummaryInputs {
    const Catalogue& catalogue;
    std::string installFolder;
    std::string sourceFolder;
    bool sourceValid = false;
};
std::string SummaryText(const SummaryInputs& inputs);

/// Whether an entry's archive can be had.
enum class ArchivePlace {
    Present,    ///< It lies in the program folder.
    ToDownload, ///< It does not, but there is an address: the build fetches it.
    Missing,    ///< It does not, and nobody knows where it is.
};
ArchivePlace FindArchivePlace(const CatalogueEntry& entry, bool fileExists);

/// One or two words for a list's column; a locked entry says so.
std::string StateText(const CatalogueEntry& entry, ArchivePlace place);

/// The tool tip of a line: archive, address, CRC and whether the archive is there.
std::string EntryTip(const CatalogueEntry& entry, ArchivePlace place);

/// Speed of a download and the time it still takes, each as far as known.
/// @param secondsLeft negative while unknown
std::string RateText(double bytesPerSecond, std::int64_t secondsLeft);

/// What a download waits for; its RateText while bytes come.
std::string DownloadDetail(const DownloadProgress& progress);

/// The installation folder that a field's text means: without a trailing backslash, except for a
/// whole drive, which without it would mean that drive's current folder.
std::string InstallFolderOf(const std::string& fieldText);

/// Title of the category that an entry belongs to; its key when the catalogue does not know it.
std::string CategoryTitle(const Catalogue& catalogue, const CatalogueEntry& entry);

} // namespace vesk
