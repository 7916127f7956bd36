#include "archive/modZipEnd.h"

#include "archive/clsByteReader.h"
#include "archive/modZipFields.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

namespace vesk {

namespace {

constexpr std::uint32_t kEndSignature = 0x06054B50;
constexpr std::uint32_t kEnd64Signature = 0x06064B50;
constexpr std::uint32_t kEnd64LocatorSignature = 0x07064B50;

constexpr std::size_t kEndSize = 22;
constexpr std::size_t kEnd64Size = 56;
constexpr std::size_t kEnd64LocatorSize = 20;
constexpr std::size_t kLongestComment = 0xFFFF;

/// The wide end record, if a locator for it stands right before the narrow one. With something put
/// in front of the archive the locator's own position is off, so the usual place is tried first.
void ReadEnd64(clsByteWindow& archive, std::uint64_t endAt, ZipEnd& end) {
    if (endAt < kEnd64LocatorSize)
        return;
    const std::uint64_t locatorAt = endAt - kEnd64LocatorSize;
    clsByteReader locator(archive.View(locatorAt, kEnd64LocatorSize));
    if (locator.U32() != kEnd64LocatorSignature)
        return;
    locator.Skip(4); // disk of the record
    const std::uint64_t told = locator.U64();
    std::uint64_t at = locatorAt >= kEnd64Size ? locatorAt - kEnd64Size : told;
    if (!HasSignature(archive, at, kEnd64Signature))
        at = told;
    clsByteReader record(archive.View(at, kEnd64Size));
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

/// @param reader stands at the record, with all that follows it
std::optional<ZipEnd> ReadEnd(clsByteReader reader, std::uint64_t at, clsByteWindow& archive) {
    if (reader.U32() != kEndSignature)
        return std::nullopt;
    ZipEnd end;
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
std::optional<std::uint64_t> DirectoryStart(clsByteWindow& archive, const ZipEnd& end) {
    if (end.directorySize > end.directoryEnd)
        return std::nullopt;
    const std::uint64_t start = end.directoryEnd - end.directorySize;
    if (end.directorySize == 0 || HasSignature(archive, start, kZipRecordSignature))
        return start;
    if (end.directoryOffset < end.directoryEnd &&
        HasSignature(archive, end.directoryOffset, kZipRecordSignature))
        return end.directoryOffset;
    return std::nullopt;
}

} // namespace

std::optional<ZipEnd> FindZipEnd(ByteSource& archive) {
    if (archive.Size() < kEndSize)
        return std::nullopt;
    constexpr std::size_t kProbe = 256; // anywhere in the file, and a comment may ask for many
    clsByteWindow probes(archive, kProbe);
    const auto tailSize = static_cast<std::size_t>(
        std::min<std::uint64_t>(archive.Size(), kEndSize + kLongestComment));
    const std::uint64_t tailAt = archive.Size() - tailSize;
    clsByteWindow window(archive, tailSize);
    const std::span<const std::byte> tail = window.View(tailAt, tailSize);
    for (std::size_t at = tail.size(); at-- > 0;) {
        if (tail[at] != std::byte{'P'})
            continue;
        std::optional<ZipEnd> end = ReadEnd(clsByteReader(tail.subspan(at)), tailAt + at, probes);
        if (!end)
            continue;
        if (const auto start = DirectoryStart(probes, *end)) {
            end->directoryStart = *start;
            return end;
        }
    }
    return std::nullopt;
}

} // namespace vesk
