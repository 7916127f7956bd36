#pragma once

#include "archive/CabDirectory.h"

#include <cstddef>
#include <span>
#include <string>

namespace vesk {

/// The headers of a cabinet that holds one folder of a judged cabinet, with only the members named.
/// The undamaged data blocks of the folder are to follow them as they are in the file. A reader
/// that is given this sees no byte of a header that was not checked. The members' names are their
/// places in `entries`, in decimal digits.
/// @param entries indices into the directory's entries, all of this folder, with rising offsets
std::string CabFolderImage(const CabDirectory& directory, const CabFolder& folder,
                           std::span<const std::size_t> entries);

} // namespace vesk
