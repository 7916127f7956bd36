#pragma once

#include "build/clsBuildContext.h"

#include <string>

namespace vesk {

/// Moves a plug-in's folder into its category's folder, edits its INF, and notes it for the menu
/// file and in the catalogue's plug-in list.
/// @throws Failure for a prefix that is no category's key, and for a move that fails; the INF edits
///         are made by then, as far as they can be
void RelocatePluginToCategory(clsBuildContext& context, const std::string& relativeInf,
                              const std::string& prefix);

} // namespace vesk
