#include "archive/modCabArchive.h"

#include "archive/clsCab.h"
#include "archive/modMemberFailure.h"
#include "base/Failure.h"
#include "base/Problem.h"

#include <string>
#include <utility>

namespace vesk {

namespace {

class CabOwner : public CabEvents {
public:
    explicit CabOwner(const ExtractionOwner& owner) : owner_(owner) {}

    void OnAfterExtract(const std::string&) override { ++outcome.extracted; }
    void OnNotExtracted(const MemberFailure& failure) override { outcome.Tell(failure); }
    void OnProgress(double fraction) override {
        if (owner_.progress)
            owner_.progress(fraction);
    }

    ExtractionOutcome outcome;

private:
    const ExtractionOwner& owner_;
};

ExtractionOutcome Run(clsCab& cab, CabOwner& events, void (clsCab::*method)()) {
    try {
        (cab.*method)();
    } catch (const Failure& failure) {
        if (failure.source != "CabFile")
            throw; // the owner's
        if (events.outcome.failures.empty())
            events.outcome.failures.push_back(NotExtracted("", ReasonOf(failure)));
    }
    return std::move(events.outcome);
}

} // namespace

ExtractionOutcome ExtractCab(const std::string& path, const std::string& folder,
                             const ExtractionOwner& owner) {
    CabOwner events(owner);
    clsCab cab(&events);
    cab.CabName = path;
    cab.DestinationFolder = folder;
    return Run(cab, events, &clsCab::Extract);
}

ExtractionOutcome TestCab(const std::string& path, const ExtractionOwner& owner) {
    CabOwner events(owner);
    clsCab cab(&events);
    cab.CabName = path;
    return Run(cab, events, &clsCab::Test);
}

} // namespace vesk
