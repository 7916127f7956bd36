#include "build/modArchiveFault.h"

#include "archive/clsCRC.h"
#include "base/modFile.h"
#include "base/modSha256.h"
#include "base/modText.h"

namespace vesk {

std::string ArchiveFault(const clsBuildContext& context, const std::string& path,
                         const CatalogueEntry& component) {
    const auto meanwhile = [&] { context.frontEnd.LetEventsRun(); };
    const std::string found = clsCRC().CalculateFile(path, meanwhile);
    if (found.empty()) // which matches nothing, an empty checksum in the catalogue included
        return WhyUnreadable(path);
    if (found != component.crc)
        return "its CRC-32 is " + found + " where the catalogue says " +
               (component.crc.empty() ? "nothing" : component.crc);
    return Sha256Fault(path, context.sha256.Expected(FileNameOf(path)), meanwhile);
}

} // namespace vesk
