#include "archive/modArchive.h"

#include "archive/modArchiveName.h"
#include "archive/modCabArchive.h"
#include "archive/modMemberFailure.h"
#include "archive/modUnzip.h"

#include <string>
#include <utility>

namespace vesk {

namespace {

constexpr const char* kNothingInIt = "it is empty";

UnzipCallbacks CallbacksOf(const ExtractionOwner& owner) {
    UnzipCallbacks callbacks;
    callbacks.password = owner.password;
    callbacks.progress = owner.progress;
    return callbacks;
}

/// An archive out of which nothing came has to say why, and how much it does not say.
ExtractionOutcome WithReason(ExtractionOutcome outcome) {
    if (outcome.extracted == 0 && outcome.failures.empty())
        outcome.failures.push_back(NotExtracted("", kNothingInIt));
    if (outcome.untold > 0)
        outcome.failures.push_back(
            {"", "not told in full",
             "there are " + std::to_string(outcome.untold) + " more problems like these"});
    return outcome;
}

} // namespace

ExtractionOutcome ExtractArchive(const std::string& path, const std::string& folder,
                                 const ExtractionOwner& owner) {
    switch (ArchiveKindOf(path)) {
    case ArchiveKind::Zip:
        return WithReason(UnzipFile(path, folder, CallbacksOf(owner)));
    case ArchiveKind::Cabinet:
        return WithReason(ExtractCab(path, folder, owner));
    case ArchiveKind::Neither:
        break;
    }
    return {0, {NotExtracted("", "it is neither a .zip nor a .cab file")}};
}

std::vector<MemberFailure> InspectArchive(const std::string& path, const ExtractionOwner& owner) {
    switch (ArchiveKindOf(path)) {
    case ArchiveKind::Zip:
        return WithReason(TestZip(path, CallbacksOf(owner))).failures;
    case ArchiveKind::Cabinet:
        return WithReason(TestCab(path, owner)).failures;
    case ArchiveKind::Neither:
        break;
    }
    return {};
}

} // namespace vesk
