#pragma once

#include "archive/modZipDirectory.h"

namespace vesk {

/// What the stored name's bytes mean, from the flags and the system that made the entry (the upper
/// byte of "version made by").
NameEncoding EncodingOf(const ZipMember& member, std::uint8_t host);

/// Whether the entry is a folder: by a separator at its name's end, or by its attributes, which
/// mean something else on each system.
bool IsFolderEntry(const ZipMember& member, std::uint8_t host);

/// Takes over what the central directory's extra fields say: wide sizes and positions, times, the
/// name in UTF-8. A field that is cut short or does not fit is passed over.
/// @param disk the number of the disk the member starts on
void ApplyExtraFields(std::span<const std::byte> extra, ZipMember& member, std::uint32_t& disk);

/// Finds each member's data and sets the `refusal` of each that must not be extracted: links,
/// unknown methods, impossible sizes, data outside the bytes given, data shared by two members.
/// @param data the archive up to its central directory
void JudgeMembers(std::span<const std::byte> data, std::vector<ZipMember>& members);

} // namespace vesk
