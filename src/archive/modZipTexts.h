#pragma once

#include "archive/ZipMember.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vesk {

/// What the reader of archives says about itself.
struct ZipVersion {
    std::string zipInfo = "4.5"; ///< Version of the archive format that is understood.
    std::string version = "1.0"; ///< Of this reader.
    std::string date = "2026-11-21";
};

/// Sums over an archive's members.
struct ZipTotals {
    std::uint64_t packedSize = 0;
    std::uint64_t size = 0;
    std::size_t members = 0;
    std::size_t commentLength = 0;

    /// Counts one more member.
    void Add(const ZipMember& member);

    /// How much smaller the packed data is, in percent; 0 when it is not.
    [[nodiscard]] int CompressFactor() const;
};

/// The name without the characters that would break a line of the message buffer.
std::string PrintableName(std::string_view name);

/// The listing's heading, and one member's line under it; both end in CR LF.
std::string ListingHeading();
std::string ListingLine(const ZipMember& member, std::string_view name);

/// The closing lines of the message buffer.
std::string Summary(const ZipVersion& version, const ZipTotals& totals);

} // namespace vesk
