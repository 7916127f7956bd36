#pragma once

#include "build/BuildContext.h"

namespace vesk {

/// Copies the read-me, creates the shortcuts and writes the menu file. Never throws: a statement
/// that fails is skipped and reported as a problem.
void FinishTree(const BuildContext& context);

} // namespace vesk
