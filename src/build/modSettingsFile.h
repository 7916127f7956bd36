#pragma once

#include "build/clsBuildContext.h"

namespace vesk {

/// Writes PE Builder's settings file into the installation folder. Never throws: a statement that
/// fails is skipped and reported as a problem.
void WriteSettingsFile(const clsBuildContext& context);

} // namespace vesk
