#include "ui/wizard/modListWalk.h"

#include "base/Failure.h"
#include "base/RunTimeError.h"

#include <algorithm>

namespace vesk {

void WalkTicks(std::vector<CatalogueEntry>& entries, std::size_t lines, const TickAccess& ticks) {
    const std::size_t count = std::min(lines, entries.size());
    for (std::size_t line = 0; line < count; ++line) {
        if (line == kMostLines)
            throw Failure(kOverflow, "modListWalk", "Overflow");
        CatalogueEntry& entry = entries[line];
        if (!entry.lock)
            entry.enabled = ticks.isTicked(line);
        else if (ticks.isTicked(line) != entry.enabled)
            ticks.setTick(line, entry.enabled);
    }
}

} // namespace vesk
