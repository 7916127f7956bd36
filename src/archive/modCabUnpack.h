#pragma once

#include "archive/CabDirectory.h"
#include "archive/CabSink.h"
#include "archive/clsByteWindow.h"

#include <cstddef>
#include <span>

namespace vesk {

/// True for the methods that are unpacked here: none and MSZIP, in which nearly all cabinets are
/// packed. Damage that no checksum shows ends the system's own reader of MSZIP, and with it the
/// program.
bool IsUnpackedHere(const CabFolder& folder);

/// Unpacks members of one folder in one pass over its undamaged data blocks. Members whose End is
/// not reached are not whole: the data turned out damaged.
/// @param entries indices into the directory's entries, all of this folder, without a refusal, of
/// at least one byte, with rising offsets
/// @throws what the source and the sink throw
void UnpackCabFolder(clsByteWindow& cabinet, const CabDirectory& directory, const CabFolder& folder,
                     std::span<const std::size_t> entries, CabSink& sink);

} // namespace vesk
