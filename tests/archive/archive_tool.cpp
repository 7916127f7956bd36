#include "archive/modArchive.h"

#include <cstdio>

/// archive_tool ARCHIVE TARGET [PASSWORD]: extracts it and writes a line for each failure.
int main(int argc, char** argv) {
    vesk::ExtractionOwner owner;
    if (argc == 4)
        owner.password = [&](bool) { return std::string(argv[3]); };
    for (const auto& [member, what, reason] :
         vesk::ExtractArchive(argv[1], argv[2], owner).failures)
        std::printf("%s: %s, %s\n", member.c_str(), what.c_str(), reason.c_str());
}
