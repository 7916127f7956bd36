#pragma once

#include "build/clsBuildContext.h"

#include <string>

namespace vesk {

/// Why a file is not the component's archive: its CRC-32, or its SHA-256 where one is asked
/// for, is another one, or it cannot be read. Empty when it is.
std::string ArchiveFault(const clsBuildContext& context, const std::string& path,
                         const CatalogueEntry& component);

} // namespace vesk
