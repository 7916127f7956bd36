#pragma once

#include "archive/CabDirectory.h"
#include "archive/clsByteWindow.h"

namespace vesk {

/// Reads a cabinet's headers and list of members. Nothing that they claim about bytes that are
/// not there is believed; the data itself is judged by JudgeCabData.
/// @throws Failure with number 13 and a reason for people when the headers cannot be read, or what
/// the source throws
CabDirectory ReadCabDirectory(clsByteWindow& cabinet);

} // namespace vesk
