#pragma once

#include "archive/ZipMember.h"
#include "archive/clsByteReader.h"
#include "archive/clsByteWindow.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace vesk {

/// What the header in front of a member's data begins with.
constexpr std::uint32_t kZipLocalSignature = 0x04034B50;

/// Bytes of its fixed fields, that signature included.
constexpr std::size_t kZipLocalSize = 30;

/// The sizes of what follows a member's fixed fields.
struct ZipTailSizes {
    std::uint16_t name = 0;
    std::uint16_t extra = 0;
};

/// Reads the fields that a member's header and its record in the central directory have in common,
/// in one order: from the flags on to the size of the extra fields.
inline ZipTailSizes ReadSharedFields(clsByteReader& reader, ZipMember& member) {
    member.flags = reader.U16();
    member.method = reader.U16();
    member.dosTime = reader.U16();
    member.dosDate = reader.U16();
    member.crc = reader.U32();
    member.packedSize = reader.U32();
    member.size = reader.U32();
    ZipTailSizes sizes;
    sizes.name = reader.U16();
    sizes.extra = reader.U16();
    return sizes;
}

/// Whether these four bytes stand there, the lowest first.
bool HasSignature(clsByteWindow& archive, std::uint64_t at, std::uint32_t signature);

/// The first place from `at` on, and wholly before `end`, where these four bytes stand.
std::optional<std::uint64_t> FindSignature(clsByteWindow& archive, std::uint64_t at,
                                           std::uint64_t end, std::uint32_t signature);

} // namespace vesk
