#include "build/clsArchiveFetcher.h"

#include "archive/modArchiveName.h"
#include "base/modFile.h"
#include "base/modText.h"
#include "build/modArchiveFault.h"

namespace vesk {

DownloadOutcome clsArchiveFetcher::Fetch(const CatalogueEntry& component) {
    context_.Log("Downloading: " + component.zip);
    const std::string archive = context_.ArchivePath(component);
    DownloadOutcome outcome;
    if (IsReplaceableArchiveName(component.zip))
        ResumeNext([&](const Problem& problem) { outcome.reason = problem.reason; }, {},
                   [&] {
                       outcome = context_.frontEnd.DownloadFile(
                           {component.url, archive, component.crc,
                            context_.sha256.Expected(component.zip)});
                   });
    else
        outcome.reason = "its name in the catalogue cannot be an archive's";
    if (TrimBlanks(component.url).empty())
        outcome.reason = "the catalogue has no address for it";
    if (outcome.result == DownloadResult::Done)
        return outcome;
    // A file that is there is downloaded again only because it is not the right one.
    const bool wasThere = IsReplaceableArchiveName(component.zip) && FileExists(archive);
    const std::string fault = wasThere ? ArchiveFault(context_, archive, component) : "";
    RemoveLeftovers(component);
    if (wasThere)
        outcome.reason += std::string("; the file that was there ") +
                          (FileExists(archive) ? "is still there" : "was removed") +
                          (fault.empty() ? "" : ", " + fault);
    context_.report({component.zip, "not downloaded", outcome.reason});
    notFetched_.insert(component.zip);
    if (outcome.result == DownloadResult::Failed)
        context_.Warn(component, " could not be downloaded. !!!");
    if (outcome.result == DownloadResult::Cancelled)
        context_.Log("Warning: download cancelled by user. !!!");
    return outcome;
}

/// Removes what a failed download left, with one line for the archive wherever it was written to.
void clsArchiveFetcher::RemoveLeftovers(const CatalogueEntry& component) {
    if (!IsReplaceableArchiveName(component.zip))
        return;
    const std::string archive = context_.ArchivePath(component);
    const std::string partial = PartialPath(archive);
    if (!FileExists(archive) && !FileExists(partial))
        return;
    context_.Status("Deleting file");
    context_.Log("Deleting File: " + archive);
    for (const std::string& path : {archive, partial}) {
        if (FileExists(path))
            context_.ResumeNext({path, "not removed"}, [&] { RemoveFile(path); });
    }
}

} // namespace vesk
