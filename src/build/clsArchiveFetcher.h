#pragma once

#include "build/clsBuildContext.h"

#include <initializer_list>
#include <set>
#include <string>

namespace vesk {

/// Downloads components' archives into the program folder.
class clsArchiveFetcher {
public:
    /// @param context must outlive the object
    explicit clsArchiveFetcher(const clsBuildContext& context) : context_(context) {}

    /// Downloads a component's archive. What is not right is removed and reported; a failure
    /// and a cancel are logged, a difference of the CRC is the caller's to log. What another build
    /// writes is left alone, and the right archive is taken whoever brought it.
    DownloadOutcome Fetch(const CatalogueEntry& component);

    /// True once the download of an archive was reported as failed: that it is then missing is no
    /// second problem.
    [[nodiscard]] bool HasTold(const std::string& zip) const { return notFetched_.contains(zip); }

private:
    DownloadOutcome Download(const CatalogueEntry& component, const std::string& archive);
    void RemoveLeftovers(std::initializer_list<std::string> paths) const;

    const clsBuildContext& context_;
    std::set<std::string> notFetched_;
};

} // namespace vesk
