#pragma once

#include "build/clsBuildContext.h"

namespace vesk {

/// Writes the build tree's menu file: a section for each regrouped plug-in, and the categories.
/// Throws nothing: a value that cannot be written is reported as a problem.
void WriteMenuFile(const clsBuildContext& context);

} // namespace vesk
