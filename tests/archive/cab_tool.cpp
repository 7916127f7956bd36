#include "archive/clsCab.h"
#include "base/Failure.h"

#include <cstdio>
#include <string>

namespace {

struct Owner : vesk::CabEvents {
    void OnNotExtracted(const vesk::MemberFailure& failure) override {
        std::printf("%s: %s, %s\n", failure.member.c_str(), failure.what.c_str(),
                    failure.reason.c_str());
    }
};

} // namespace

/// cab_tool CABINET: writes the member list as XML. cab_tool CABINET FOLDER: extracts into it and
/// writes what was not done.
int main(int argc, char** argv) {
    try {
        Owner owner;
        vesk::clsCab cab(&owner);
        cab.CabName = argc > 1 ? argv[1] : "";
        if (argc > 2) {
            cab.DestinationFolder = argv[2];
            cab.Extract();
        } else {
            std::fputs(cab.GetXML().c_str(), stdout);
        }
        return 0;
    } catch (const vesk::Failure& failure) {
        std::fprintf(stderr, "%s: %s\n", failure.source.c_str(), failure.what());
        return 1;
    }
}
