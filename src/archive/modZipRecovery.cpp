#include "archive/modZipRecovery.h"

#include "archive/modZipFields.h"
#include "archive/modZipJudge.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

namespace vesk {

namespace {

constexpr std::uint32_t kDescriptorSignature = 0x08074B50;

/// CRC and sizes of a streamed member, which stand behind its data.
struct Descriptor {
    std::uint32_t crc = 0;
    std::uint64_t packedSize = 0;
    std::uint64_t size = 0;
    std::uint64_t end = 0; ///< Where the descriptor itself ends.
};

/// Whether a record, or nothing, follows.
bool EndsBefore(clsByteWindow& archive, std::uint64_t at) {
    clsByteReader reader(archive.View(at, 4));
    return reader.Left() < 4 || (reader.U8() == 'P' && reader.U8() == 'K');
}

/// There are two forms of different length; which one it is shows in what follows.
/// @param at where a descriptor's signature stands
std::optional<Descriptor> ReadDescriptor(clsByteWindow& archive, std::uint64_t at,
                                         std::uint64_t packedSize) {
    for (const bool wide : {false, true}) {
        const std::size_t length = wide ? 24 : 16;
        clsByteReader reader(archive.View(at, length));
        reader.Skip(4);
        Descriptor found;
        found.crc = reader.U32();
        found.packedSize = wide ? reader.U64() : reader.U32();
        found.size = wide ? reader.U64() : reader.U32();
        found.end = at + length;
        if (reader.Ok() && found.packedSize == packedSize && EndsBefore(archive, found.end))
            return found;
    }
    return std::nullopt;
}

/// Looks for the descriptor that says how much data stands before it.
std::optional<Descriptor> FindDescriptor(clsByteWindow& archive, std::uint64_t dataAt) {
    std::uint64_t from = dataAt;
    while (const auto at = FindSignature(archive, from, archive.Size(), kDescriptorSignature)) {
        if (const auto found = ReadDescriptor(archive, *at, *at - dataAt))
            return found;
        from = *at + 4;
    }
    return std::nullopt;
}

/// @param dataAt set to where the member's data begins
std::optional<ZipMember> ReadLocalHeader(clsByteWindow& archive, std::uint64_t at,
                                         std::uint64_t& dataAt) {
    clsByteReader fixed(archive.View(at, kZipLocalSize));
    if (fixed.U32() != kZipLocalSignature)
        return std::nullopt;
    ZipMember member;
    member.headerAt = at;
    fixed.Skip(2); // version needed
    const auto [nameSize, extraSize] = ReadSharedFields(fixed, member);
    clsByteReader reader(archive.View(at + kZipLocalSize, std::size_t{nameSize} + extraSize));
    member.name = reader.Text(nameSize);
    const auto extra = reader.Bytes(extraSize);
    if (!fixed.Ok() || !reader.Ok())
        return std::nullopt;
    dataAt = at + kZipLocalSize + nameSize + extraSize;
    // Which system made the entry stands in the central directory only.
    constexpr std::uint8_t kUnix = 3;
    constexpr std::uint8_t kDos = 0;
    member.encoding = EncodingOf(member, kUnix);
    if (member.encoding == NameEncoding::Ansi)
        member.encoding = NameEncoding::Oem;
    member.folder = IsFolderEntry(member, kDos);
    std::uint32_t disk = 0;
    ApplyExtraFields(extra, member, disk);
    return member;
}

} // namespace

std::vector<ZipMember> MembersByLocalHeaders(ByteSource& archive) {
    std::vector<ZipMember> members;
    clsByteWindow window(archive);
    for (std::uint64_t at = 0; at < archive.Size();) {
        std::uint64_t dataAt = 0;
        std::optional<ZipMember> member = ReadLocalHeader(window, at, dataAt);
        if (!member)
            break;
        bool endKnown = true;
        if (!member->IsStreamed()) {
            at = dataAt + std::min(member->packedSize, archive.Size() - dataAt);
        } else if (const auto found = FindDescriptor(window, dataAt)) {
            member->crc = found->crc;
            member->packedSize = found->packedSize;
            member->size = found->size;
            at = found->end;
        } else {
            member->refusal = "its end cannot be found without the central directory";
            endKnown = false;
        }
        members.push_back(std::move(*member));
        if (!endKnown)
            break;
    }
    return members;
}

} // namespace vesk
