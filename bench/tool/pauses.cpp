#include "bench.h"

#include "RecordingFrontEnd.h"
#include "build/clsBuildRun.h"
#include "catalogue/modCatalogueFile.h"

#include <algorithm>
#include <cstdio>

namespace vesk::bench {

namespace {

struct Pause {
    double length;
    double at;
    std::string after;
};

class Watch : public test::RecordingFrontEnd {
public:
    std::vector<Pause> pauses;

    void AddLogLine(const std::string& text, LogMode) override {
        LetEventsRun(); // as the wizard does
        last_ = text;
    }
    void LetEventsRun() override {
        const double now = Now();
        pauses.push_back({now - before_, before_ - start_, last_});
        before_ = now;
    }

private:
    double start_ = Now();
    double before_ = start_;
    std::string last_;
};

} // namespace

void Pauses(const Arguments& arguments) {
    Catalogue catalogue;
    LoadCatalogueReporting(arguments.at(0), catalogue);
    const BuildInputs inputs{
        clsInstallFolder(arguments.at(1), clsFolderGuard::OfSystem(arguments.at(0), "")),
        "",
        arguments.at(0),
        {},
        true};
    Watch watch;
    clsBuildRun(inputs, catalogue, watch).Run();
    watch.LetEventsRun();
    std::ranges::sort(watch.pauses, std::ranges::greater(), &Pause::length);
    for (std::size_t i = 0; i < std::min<std::size_t>(watch.pauses.size(), 12); ++i)
        std::printf("%8.1f ms at %8.1f after \"%s\"\n", watch.pauses[i].length, watch.pauses[i].at,
                    watch.pauses[i].after.c_str());
}

} // namespace vesk::bench
