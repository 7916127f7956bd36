#include "archive/modCabArchive.h"

#include "archive/clsCab.h"
#include "archive/clsFileSource.h"
#include "archive/modCabDirectory.h"
#include "archive/modCabJudge.h"
#include "archive/modCabName.h"
#include "base/Failure.h"
#include "base/Problem.h"

namespace vesk {

namespace {

class CabOwner : public CabEvents {
public:
    explicit CabOwner(const ExtractionOwner& owner) : owner_(owner) {}

    void OnAfterExtract(const std::string&) override { ++outcome.extracted; }
    void OnNotExtracted(const MemberFailure& failure) override {
        outcome.failures.push_back(failure);
    }
    void OnProgress(double fraction) override {
        if (owner_.progress)
            owner_.progress(fraction);
    }

    ExtractionOutcome outcome;

private:
    const ExtractionOwner& owner_;
};

} // namespace

ExtractionOutcome ExtractCab(const std::string& path, const std::string& folder,
                             const ExtractionOwner& owner) {
    CabOwner events(owner);
    clsCab cab(&events);
    cab.CabName = path;
    cab.DestinationFolder = folder;
    try {
        cab.Extract();
    } catch (const Failure& failure) {
        if (failure.source != "CabFile")
            throw; // the owner's
        if (events.outcome.failures.empty())
            events.outcome.failures.push_back({"", "not extracted", ReasonOf(failure)});
    }
    return events.outcome;
}

std::vector<MemberFailure> InspectCab(const std::string& path) {
    std::vector<MemberFailure> found;
    try {
        clsFileSource source(path);
        ByteWindow cabinet(source);
        CabDirectory directory = ReadCabDirectory(cabinet);
        JudgeCabData(cabinet, directory, [] {});
        JudgeCabEntries(directory);
        JudgeCabNames(directory);
        for (const CabEntry& entry : directory.entries)
            if (!entry.refusal.empty())
                found.push_back({CabDisplayName(entry), "not written", entry.refusal});
    } catch (const std::exception& failure) {
        found = {{"", "not extracted", ReasonOf(failure)}};
    }
    return found;
}

} // namespace vesk
