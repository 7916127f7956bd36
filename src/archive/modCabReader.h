#pragma once

#include "archive/CabDirectory.h"
#include "archive/CabSink.h"
#include "archive/clsByteWindow.h"

#include <cstddef>
#include <span>

namespace vesk {

/// Does what UnpackCabFolder does for the methods that are not unpacked here, Quantum and LZX, with
/// the system's cabinet library. That is what the setup library's iteration of cabinets is made of.
/// The iteration itself is not used: it knows files by names of the ANSI code page below MAX_PATH
/// only, keeps failures of writing to itself, reads the cabinet's own headers, some of which crash
/// it, and unpacks damaged MSZIP data without care; with what a caller has to add (moving files to
/// their names, times) it takes a fifth longer.
/// Members whose End is not reached, or comes early, are not whole: the data turned out damaged.
/// @param entries as for CabFolderImage; none may have a refusal
/// @throws Failure, also for data that cannot be fetched, and what the sink throws
void ReadCabFolder(clsByteWindow& cabinet, const CabDirectory& directory, const CabFolder& folder,
                   std::span<const std::size_t> entries, CabSink& sink);

} // namespace vesk
