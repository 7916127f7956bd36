#include "archive/modZipRecovery.h"

#include "archive/modZipFields.h"
#include "archive/modZipJudge.h"

#include <algorithm>
#include <array>

namespace vesk {

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::uint16_t kFlagStreamed = 1U << 3;

/// CRC and sizes of a streamed member, which stand behind its data.
struct Descriptor {
    std::uint32_t crc = 0;
    std::uint64_t packedSize = 0;
    std::uint64_t size = 0;
    std::size_t length = 0; ///< Of the descriptor itself.
};

/// Whether a record, or nothing, follows.
bool EndsBefore(Bytes rest) {
    clsByteReader reader(rest);
    return rest.size() < 4 || (reader.U8() == 'P' && reader.U8() == 'K');
}

/// There are two forms of different length; which one it is shows in what follows.
/// @param at where a descriptor's signature stands
std::optional<Descriptor> ReadDescriptor(Bytes at, std::uint64_t packedSize) {
    for (const bool wide : {false, true}) {
        clsByteReader reader(at.subspan(4));
        Descriptor found;
        found.crc = reader.U32();
        found.packedSize = wide ? reader.U64() : reader.U32();
        found.size = wide ? reader.U64() : reader.U32();
        found.length = wide ? 24 : 16;
        if (reader.Ok() && found.packedSize == packedSize && EndsBefore(at.subspan(found.length)))
            return found;
    }
    return std::nullopt;
}

/// Looks for the descriptor that says how much data stands before it.
std::optional<Descriptor> FindDescriptor(Bytes data) {
    constexpr std::array kMark = {std::byte{'P'}, std::byte{'K'}, std::byte{7}, std::byte{8}};
    for (std::size_t from = 0; from < data.size();) {
        const Bytes rest = data.subspan(from);
        const auto mark = std::search(rest.begin(), rest.end(), kMark.begin(), kMark.end());
        if (mark == rest.end())
            return std::nullopt;
        const auto at = from + static_cast<std::size_t>(mark - rest.begin());
        if (const auto found = ReadDescriptor(data.subspan(at), at))
            return found;
        from = at + kMark.size();
    }
    return std::nullopt;
}

std::optional<ZipMember> ReadLocalHeader(clsByteReader& reader) {
    if (reader.U32() != kZipLocalSignature)
        return std::nullopt;
    ZipMember member;
    reader.Skip(2); // version needed
    const auto [nameSize, extraSize] = ReadSharedFields(reader, member);
    member.name = reader.Text(nameSize);
    const Bytes extra = reader.Bytes(extraSize);
    if (!reader.Ok())
        return std::nullopt;
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

std::vector<ZipMember> MembersByLocalHeaders(Bytes archive) {
    std::vector<ZipMember> members;
    for (std::uint64_t at = 0; at < archive.size();) {
        const Bytes rest = archive.subspan(static_cast<std::size_t>(at));
        clsByteReader reader(rest);
        std::optional<ZipMember> member = ReadLocalHeader(reader);
        if (!member)
            break;
        member->headerAt = at;
        const Bytes data = rest.last(reader.Left());
        std::uint64_t next = archive.size() - data.size();
        bool endKnown = true;
        if ((member->flags & kFlagStreamed) == 0) {
            next += std::min<std::uint64_t>(member->packedSize, data.size());
        } else if (const auto found = FindDescriptor(data)) {
            member->crc = found->crc;
            member->packedSize = found->packedSize;
            member->size = found->size;
            next += found->packedSize + found->length;
        } else {
            member->refusal = "its end cannot be found without the central directory";
            endKnown = false;
        }
        members.push_back(std::move(*member));
        if (!endKnown)
            break;
        at = next;
    }
    return members;
}

} // namespace vesk
