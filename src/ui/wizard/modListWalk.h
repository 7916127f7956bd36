#pragma once

#include "catalogue/Catalogue.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace vesk {

/// How the walk over a component list sees the list's ticks; lines are numbered from 0.
struct TickAccess {
    std::function<bool(std::size_t line)> isTicked;
    std::function<void(std::size_t line, bool ticked)> setTick;
};

/// Brings list and catalogue into agreement after a click: the line of a locked entry springs back
/// to the entry's own state, every other entry takes over its line's tick.
/// @param lines number of lines in the list; the entries may have more
/// @throws Failure 6 "Overflow" behind line kMostLines: a catalogue beyond that is refused here
///         rather than half obeyed.
void WalkTicks(std::vector<CatalogueEntry>& entries, std::size_t lines, const TickAccess& ticks);

} // namespace vesk
