#pragma once

#include "build/BuildContext.h"

/// The steps that shape PE Builder's tree once its archive is extracted. None of them throws: a
/// statement that fails is skipped.
namespace vesk {

/// Writes PE Builder's settings file into the installation folder.
void WriteSettingsFile(const BuildContext& context);

/// Hides PE Builder's ISO writer behind a new name, removes the stock plug-ins that a build does
/// not want and moves the others into their category folders.
void PruneStockPlugins(BuildContext& context);

/// Copies the read-me, creates the shortcuts and writes the menu file.
void FinishTree(const BuildContext& context);

} // namespace vesk
