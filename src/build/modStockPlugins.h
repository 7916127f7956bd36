#pragma once

#include "build/clsBuildContext.h"

namespace vesk {

/// Hides PE Builder's ISO writer behind a new name, removes the stock plug-ins that a build does
/// not want and moves the others into their category folders. Never throws: a statement that fails
/// is skipped and reported as a problem.
void PruneStockPlugins(clsBuildContext& context);

} // namespace vesk
