#include "archive/modZipDirectory.h"

#include "archive/modZipFields.h"
#include "archive/modZipJudge.h"
#include "archive/modZipRecovery.h"

#include <algorithm>
#include <array>

namespace vesk {

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::uint32_t kMemberSignature = 0x02014B50;
constexpr std::uint32_t kEndSignature = 0x06054B50;
constexpr std::uint32_t kEnd64Signature = 0x06064B50;
constexpr std::uint32_t kEnd64LocatorSignature = 0x07064B50;

constexpr std::size_t kEndSize = 22;
constexpr std::size_t kEnd64Size = 56;
constexpr std::size_t kEnd64LocatorSize = 20;
constexpr std::size_t kLongestComment = 0xFFFF;

/// The record at the archive's end, with the wide values where there are any.
struct EndRecord {
    std::uint64_t count = 0;
    std::uint64_t countMask = 0xFFFF; ///< The narrow count is cut to 16 bits by writers in use.
    std::uint64_t directorySize = 0;
    std::uint64_t directoryOffset = 0;
    std::uint64_t directoryEnd = 0; ///< Where the central directory must end.
    bool spansDisks = false;
    std::string comment;
};

clsByteReader ReaderAt(Bytes archive, std::uint64_t at) {
    return clsByteReader(at <= archive.size() ? archive.subspan(static_cast<std::size_t>(at))
                                              : Bytes());
}

bool HasSignature(Bytes archive, std::uint64_t at, std::uint32_t signature) {
    return ReaderAt(archive, at).U32() == signature;
}

/// The wide end record, if a locator for it stands right before the narrow one. With something put
/// in front of the archive the locator's own position is off, so the usual place is tried first.
void ReadEnd64(Bytes archive, std::uint64_t endAt, EndRecord& end) {
    if (endAt < kEnd64LocatorSize)
        return;
    const std::uint64_t locatorAt = endAt - kEnd64LocatorSize;
    clsByteReader locator = ReaderAt(archive, locatorAt);
    if (locator.U32() != kEnd64LocatorSignature)
        return;
    locator.Skip(4); // disk of the record
    const std::uint64_t told = locator.U64();
    std::uint64_t at = locatorAt >= kEnd64Size ? locatorAt - kEnd64Size : told;
    if (!HasSignature(archive, at, kEnd64Signature))
        at = told;
    clsByteReader record = ReaderAt(archive, at);
    if (record.U32() != kEnd64Signature || record.Left() < kEnd64Size - 4)
        return;
    record.Skip(12); // its size, the versions
    const bool firstDisk = record.U32() == 0;
    end.spansDisks = record.U32() != 0 || !firstDisk;
    record.Skip(8); // members on this disk
    end.count = record.U64();
    end.countMask = ~std::uint64_t{0};
    end.directorySize = record.U64();
    end.directoryOffset = record.U64();
    end.directoryEnd = at;
}

std::optional<EndRecord> ReadEnd(Bytes archive, std::uint64_t at) {
    clsByteReader reader = ReaderAt(archive, at);
    if (reader.U32() != kEndSignature)
        return std::nullopt;
    EndRecord end;
    const std::uint16_t disk = reader.U16();
    const std::uint16_t directoryDisk = reader.U16();
    end.spansDisks =
        (disk != 0 && disk != 0xFFFF) || (directoryDisk != 0 && directoryDisk != 0xFFFF);
    reader.Skip(2); // members on this disk
    end.count = reader.U16();
    end.directorySize = reader.U32();
    end.directoryOffset = reader.U32();
    end.directoryEnd = at;
    const std::size_t commentSize = reader.U16();
    if (!reader.Ok())
        return std::nullopt;
    end.comment = reader.Text(std::min(commentSize, reader.Left()));
    ReadEnd64(archive, at, end);
    return end;
}

/// Where the central directory begins. It ends at the end record; an archive that says otherwise is
/// believed only when a member's record stands where it says.
std::optional<std::uint64_t> DirectoryStart(Bytes archive, const EndRecord& end) {
    if (end.directorySize > end.directoryEnd)
        return std::nullopt;
    const std::uint64_t start = end.directoryEnd - end.directorySize;
    if (end.directorySize == 0 || HasSignature(archive, start, kMemberSignature))
        return start;
    if (end.directoryOffset < end.directoryEnd &&
        HasSignature(archive, end.directoryOffset, kMemberSignature))
        return end.directoryOffset;
    return std::nullopt;
}

struct Directory {
    EndRecord end;
    std::uint64_t start = 0;
};

/// The last end record that leads to a directory: a comment may hold bytes that look like one.
std::optional<Directory> FindDirectory(Bytes archive) {
    if (archive.size() >= kEndSize) {
        const std::size_t last = archive.size() - kEndSize;
        const std::size_t first = last > kLongestComment ? last - kLongestComment : 0;
        for (std::size_t at = last + 1; at-- > first;) {
            if (archive[at] != std::byte{'P'})
                continue;
            std::optional<EndRecord> end = ReadEnd(archive, at);
            if (!end)
                continue;
            if (const auto start = DirectoryStart(archive, *end))
                return Directory{std::move(*end), *start};
        }
    }
    return std::nullopt;
}

/// What the members' own headers tell, for an archive that was cut off.
ZipDirectory WithoutDirectory(Bytes archive) {
    ZipDirectory directory;
    directory.members = MembersByLocalHeaders(archive);
    if (directory.members.empty())
        throw ArchiveProblem("no central directory: not a ZIP archive, or its end is missing");
    directory.problem = "its end is missing or damaged; only what was found without it, " +
                        std::to_string(directory.members.size()) + " members, is extracted";
    JudgeMembers(archive, directory.members);
    return directory;
}

/// Moves on to what looks like a record. @return false when there is nothing more
bool FindRecord(Bytes& rest) {
    constexpr std::array kMark = {std::byte{'P'}, std::byte{'K'}, std::byte{1}, std::byte{2}};
    const auto found = std::search(rest.begin(), rest.end(), kMark.begin(), kMark.end());
    rest = rest.subspan(static_cast<std::size_t>(found - rest.begin()));
    return !rest.empty();
}

/// Reads one record; false when it runs off the directory's end.
bool ReadMember(clsByteReader& reader, ZipMember& member) {
    reader.Skip(1); // version of the maker
    const std::uint8_t host = reader.U8();
    reader.Skip(2); // version needed
    const auto [nameSize, extraSize] = ReadSharedFields(reader, member);
    const std::uint16_t commentSize = reader.U16();
    std::uint32_t disk = reader.U16();
    reader.Skip(2); // internal attributes
    member.externalAttributes = reader.U32();
    member.headerAt = reader.U32();
    // Asked before anything is copied: there may be many headings of records that are none.
    if (reader.Left() < std::size_t{nameSize} + extraSize + commentSize)
        return false;
    member.name = reader.Text(nameSize);
    const auto extra = reader.Bytes(extraSize);
    reader.Skip(commentSize);
    member.encoding = EncodingOf(member, host);
    member.folder = IsFolderEntry(member, host);
    ApplyExtraFields(extra, member, disk);
    if (disk != 0)
        member.refusal = "lies on another disk of the archive";
    return true;
}

/// Positions count from the archive's own first byte, unless what the end record says of that is
/// wrong itself: then they count from the file's, where the first header shows it. Unsigned
/// arithmetic may wrap here, what comes out is compared with the file's size before it is used.
void ShiftPositions(Bytes archive, std::vector<ZipMember>& members, std::uint64_t shift) {
    if (members.empty() ||
        (!HasSignature(archive, members[0].headerAt + shift, kZipLocalSignature) &&
         HasSignature(archive, members[0].headerAt, kZipLocalSignature)))
        return;
    for (ZipMember& member : members)
        member.headerAt += shift;
}

} // namespace

ZipDirectory ReadZipDirectory(Bytes archive) {
    std::optional<Directory> located = FindDirectory(archive);
    if (!located)
        return WithoutDirectory(archive);
    Directory& found = *located;
    if (found.end.spansDisks)
        throw ArchiveProblem("one part of an archive that spans several disks");
    ZipDirectory directory;
    directory.comment = std::move(found.end.comment);
    const std::uint64_t shift = found.start - found.end.directoryOffset;
    Bytes rest = archive.subspan(static_cast<std::size_t>(found.start),
                                 static_cast<std::size_t>(found.end.directoryEnd - found.start));
    while (FindRecord(rest)) { // behind a damaged record the next one may be whole
        ZipMember member;
        clsByteReader reader(rest.subspan(4));
        const bool whole = ReadMember(reader, member);
        rest = whole ? rest.last(reader.Left()) : rest.subspan(4);
        if (!whole)
            continue;
        directory.members.push_back(std::move(member));
    }
    if (directory.members.empty() && found.end.count != 0)
        return WithoutDirectory(archive);
    ShiftPositions(archive, directory.members, shift);
    if ((directory.members.size() & found.end.countMask) != found.end.count)
        directory.problem =
            "the central directory holds " + std::to_string(directory.members.size()) +
            " readable members, its end record says " + std::to_string(found.end.count);
    JudgeMembers(archive.first(static_cast<std::size_t>(found.start)), directory.members);
    return directory;
}

} // namespace vesk
