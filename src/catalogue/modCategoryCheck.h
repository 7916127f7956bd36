#pragma once

#include "catalogue/Catalogue.h"

#include <string>
#include <vector>

namespace vesk {

/// Why each category cannot be written to the file and read back as it is, or its folder cannot be
/// made, as a sentence without a full stop; an empty one for each that has no fault. Of two with
/// the same key or folder the later one is at fault.
std::vector<std::string> CategoryFaults(const std::vector<CategoryRecord>& categories);

} // namespace vesk
