#pragma once

#include "archive/ZipMember.h"
#include "archive/clsByteWindow.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace vesk {

/// What the stored name's bytes mean, from the flags and the system that made the entry (the upper
/// byte of "version made by").
NameEncoding EncodingOf(const ZipMember& member, std::uint8_t host);

/// Whether the entry is a folder: by a separator at its name's end, or by its attributes, which
/// mean something else on each system.
bool IsFolderEntry(const ZipMember& member, std::uint8_t host);

/// Whether the entry is a link, by its attributes, or a device or the like, where these have a mode
/// of Unix in them. Elsewhere the same bits mean other things, or nothing.
bool IsSpecialEntry(const ZipMember& member, std::uint8_t host);

/// Takes over what the central directory's extra fields say: wide sizes and positions, times, the
/// name in UTF-8. A field that is cut short or does not fit is passed over.
/// @param disk the number of the disk the member starts on
void ApplyExtraFields(std::span<const std::byte> extra, ZipMember& member, std::uint32_t& disk);

/// Finds a member's data and sets its `refusal` when it must not be extracted: a link, an unknown
/// method, impossible sizes, data outside the archive. A refusal that is there already stays.
/// @param dataEnd where the archive's data ends and its directory begins
/// @throws Failure when the archive cannot be read
void JudgeMember(clsByteWindow& archive, std::uint64_t dataEnd, ZipMember& member);

} // namespace vesk
