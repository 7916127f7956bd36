#pragma once

#include "build/BuildContext.h"

namespace vesk {

/// Writes PE Builder's settings file into the installation folder. Never throws: a statement that
/// fails is skipped and reported as a problem.
void WriteSettingsFile(const BuildContext& context);

} // namespace vesk
