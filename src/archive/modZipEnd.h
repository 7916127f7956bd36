#pragma once

#include "archive/ByteSource.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vesk {

/// What a record of the central directory begins with.
constexpr std::uint32_t kZipRecordSignature = 0x02014B50;

/// The record at an archive's end, with the wide values where there are any, and the place of the
/// central directory.
struct ZipEnd {
    std::uint64_t count = 0;
    std::uint64_t countMask = 0xFFFF;  ///< The narrow count is cut to 16 bits by writers in use.
    std::uint64_t directorySize = 0;   ///< As told.
    std::uint64_t directoryOffset = 0; ///< As told.
    std::uint64_t directoryStart = 0;  ///< As found.
    std::uint64_t directoryEnd = 0;
    bool spansDisks = false;
    std::string comment;
};

/// Finds the last end record that leads to a directory: a comment may hold bytes that look like
/// one.
std::optional<ZipEnd> FindZipEnd(ByteSource& archive);

} // namespace vesk
