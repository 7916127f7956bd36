#include "archive/clsCab.h"
#include "archive/modArchive.h"

#include <cstdio>

/// archive_tool ARCHIVE TARGET [PASSWORD]: extracts it and writes a line for each failure.
/// archive_tool CABINET: writes its list of members as XML.
int main(int argc, char** argv) {
    if (argc == 2) {
        vesk::clsCab cab;
        cab.CabName = argv[1];
        std::fputs(cab.GetXML().c_str(), stdout);
        return 0;
    }
    vesk::ExtractionOwner owner;
    if (argc == 4)
        owner.password = [&](bool) { return std::string(argv[3]); };
    for (const auto& [member, what, reason] :
         vesk::ExtractArchive(argv[1], argv[2], owner).failures)
        std::printf("%s: %s, %s\n", member.c_str(), what.c_str(), reason.c_str());
}
