#pragma once

#include "archive/CabDirectory.h"
#include "archive/clsByteWindow.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace vesk {

/// Largest number of bytes that one data block stands for.
constexpr std::size_t kCabBlockSize = 32768;

/// Walks every folder's chain of data blocks once, with its checksums, and sets what of it can be
/// used. No two folders may share bytes: no archiver writes such a thing, and the walk stays as
/// long as the file.
/// @param tick called after each block
/// @throws Failure when the source does
void JudgeCabData(clsByteWindow& cabinet, CabDirectory& directory,
                  const std::function<void()>& tick);

/// Sets the `refusal` of each member that cannot be extracted: another cabinet's, of no folder,
/// packed in an unknown way, sharing bytes with one before it, or without undamaged data. To be
/// called after JudgeCabData.
/// @return the members in the order in which they are to be read: folder by folder, front to back;
/// those of no folder last
std::vector<std::size_t> JudgeCabEntries(CabDirectory& directory);

} // namespace vesk
