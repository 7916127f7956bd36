#pragma once

#include "build/clsBuildContext.h"

namespace vesk {

/// Copies the read-me, creates the shortcuts and writes the menu file. Never throws: a statement
/// that fails is skipped and reported as a problem.
void FinishTree(const clsBuildContext& context);

} // namespace vesk
