#include "catalogue/modFolderCheck.h"

#include "base/Problem.h"
#include "base/modFile.h"
#include "catalogue/clsProgramArchives.h"
#include "catalogue/clsSha256List.h"
#include "catalogue/modCatalogueFaults.h"
#include "catalogue/modCatalogueFile.h"
#include "catalogue/modIniText.h"

#include <memory>
#include <optional>

namespace vesk {

namespace {

/// The archives in a folder (its path ends in "\"), for CheckCatalogue.
ArchiveSource ArchivesIn(const std::string& programPath, const ExtractionOwner& owner) {
    const auto archives = std::make_shared<clsProgramArchives>(programPath);
    const auto alive = [owner] {
        if (owner.progress)
            owner.progress(0);
    };
    return {[archives, alive](const std::string& name) { return archives->Facts(name, alive); },
            [programPath, owner](const std::string& name) {
                std::vector<std::string> lines;
                for (const MemberFailure& failure : InspectArchive(programPath + name, owner))
                    lines.push_back((failure.member.empty() ? "" : failure.member + ": ") +
                                    failure.what + ", " + failure.reason);
                return lines;
            }};
}

} // namespace

CatalogueCheck CheckWithProgramFolder(const std::string& programPath, const Catalogue& catalogue,
                                      const ExtractionOwner& owner,
                                      const std::vector<std::string>& sectionNames) {
    CatalogueCheck check = CheckCatalogue(catalogue, ArchivesIn(programPath, owner), sectionNames);
    const clsSha256List list(programPath);
    for (const Problem& problem : list.Problems())
        check.problems.push_back({CatalogueProblemKind::Sha256List, kSha256FileName,
                                  problem.what + ", " + problem.reason, std::nullopt});
    return check;
}

CatalogueCheck CheckCatalogueFile(const std::string& programPath, const Catalogue& catalogue,
                                  const ExtractionOwner& owner) {
    return CheckWithProgramFolder(programPath, catalogue, owner,
                                  SectionNames(ReadWholeFile(programPath + kCatalogueFileName)));
}

} // namespace vesk
