#include "archive/modZipJudge.h"

#include "archive/clsCRC.h"
#include "archive/modZipFields.h"
#include "base/CodePage.h"
#include "base/modUtf8.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace vesk {

namespace {

using Bytes = std::span<const std::byte>;

/// Two bits of deflate stand for at most 258 bytes.
constexpr std::uint64_t kMaxDeflateRatio = 1032;

constexpr std::uint16_t kFlagPatch = 1U << 5;
constexpr std::uint16_t kFlagStrongEncryption = 1U << 6;
constexpr std::uint16_t kFlagUtf8 = 1U << 11;
constexpr std::uint16_t kFlagMasked = 1U << 13;

/// Adds 100 ns units from 1601 to 1970.
constexpr std::int64_t kUnixEpoch = 116444736000000000;

void ApplyWideValues(clsByteReader field, ZipMember& member, std::uint32_t& disk) {
    // Only the values whose narrow form is saturated are there, in this order.
    const auto widen = [&field](std::uint64_t& value) {
        if (value == 0xFFFFFFFF && field.Left() >= 8)
            value = field.U64();
    };
    widen(member.size);
    widen(member.packedSize);
    widen(member.headerAt);
    if (disk == 0xFFFF && field.Left() >= 4)
        disk = field.U32();
}

void ApplyNtfsTimes(clsByteReader field, ZipTimes& times) {
    field.Skip(4);
    while (field.Left() >= 4) {
        const std::uint16_t tag = field.U16();
        const std::uint16_t size = field.U16();
        clsByteReader attribute(field.Bytes(size));
        if (tag != 1 || size < 24)
            continue;
        for (auto* time : {&times.modified, &times.accessed, &times.created})
            if (const std::uint64_t value = attribute.U64(); value != 0)
                *time = value;
    }
}

/// The field has 32 bits with a sign and so ends in 2038; writers go on counting. The date of DOS
/// tells which time is meant, but for those before 1980, where it stands still.
std::int64_t Unwrapped(std::int32_t seconds, std::uint16_t dosDate) {
    using namespace std::chrono;
    constexpr std::int64_t kWrap = std::int64_t{1} << 32;
    constexpr std::uint16_t kFirstDay = 1 << 5 | 1;
    const year_month_day date(year(1980 + (dosDate >> 9)), month(dosDate >> 5 & 15U),
                              day(dosDate & 31U));
    if (dosDate <= kFirstDay || !date.ok())
        return seconds;
    const std::int64_t told =
        duration_cast<std::chrono::seconds>(sys_days(date).time_since_epoch()).count();
    return told - seconds > kWrap / 2 ? seconds + kWrap : seconds;
}

/// The central directory's copy of the field holds the time of modification only.
void ApplyUnixTime(clsByteReader field, ZipMember& member) {
    if ((field.U8() & 1) == 0 || field.Left() < 4 || member.times.modified)
        return;
    const std::int64_t seconds = Unwrapped(static_cast<std::int32_t>(field.U32()), member.dosDate);
    member.times.modified = static_cast<std::uint64_t>(kUnixEpoch + seconds * 10'000'000);
}

/// The name in UTF-8 counts only while it belongs to the name it stands beside: a program that
/// renames a member and does not know the field leaves an old one behind.
void ApplyUnicodeName(clsByteReader field, ZipMember& member) {
    const std::uint8_t version = field.U8();
    const auto crc = static_cast<std::int32_t>(field.U32());
    if (version != 1 || !field.Ok() || field.Left() == 0 ||
        clsCRC().CalculateString(member.name) != crc)
        return;
    std::string name = field.Text(field.Left());
    if (!FromUtf8(name))
        return;
    member.name = std::move(name);
    member.encoding = NameEncoding::Utf8;
}

std::string MethodName(std::uint16_t method) {
    switch (method) {
    case 1:
        return "shrink";
    case 2:
    case 3:
    case 4:
    case 5:
        return "reduce";
    case 6:
        return "implode";
    case 9:
        return "deflate64";
    case 12:
        return "bzip2";
    case 14:
        return "LZMA";
    case 93:
        return "Zstandard";
    case 95:
        return "xz";
    case 98:
        return "PPMd";
    case 99:
        return "AES encryption";
    default:
        return "unknown";
    }
}

std::string RefusalByDescription(const ZipMember& member) {
    if (member.special)
        return "it is a link or a special file";
    if (member.IsFolder())
        return {};
    if ((member.flags & (kFlagStrongEncryption | kFlagMasked)) != 0)
        return "its kind of encryption is not supported";
    if ((member.flags & kFlagPatch) != 0)
        return "it is a patch, not a file";
    if (member.method != 0 && !member.IsDeflated())
        return "compression method " + std::to_string(member.method) + " (" +
               MethodName(member.method) + ") is not supported";
    return {};
}

/// @return why the member's sizes cannot be true; they fit the file already.
std::string RefusalBySizes(const ZipMember& member) {
    const std::uint64_t header = member.IsEncrypted() ? ZipMember::kCipherHeaderSize : 0;
    if (member.packedSize < header)
        return "its encryption header is cut short";
    const std::uint64_t packed = member.packedSize - header;
    if (member.IsDeflated() ? member.size > packed * kMaxDeflateRatio : member.size != packed)
        return "its declared size is impossible";
    return {};
}

bool Fits(const ZipMember& member, std::uint64_t dataAt, std::uint64_t dataEnd) {
    return dataAt <= dataEnd && member.packedSize <= dataEnd - dataAt &&
           (member.IsFolder() || RefusalBySizes(member).empty());
}

/// Which of two contradicting sizes are true is seen by the data, whose CRC must be the directory's
/// in any case. Sizes that cannot be true are not tried.
void CompareSizes(const ZipMember& local, std::uint64_t dataAt, std::uint64_t dataEnd,
                  ZipMember& member) {
    constexpr std::uint64_t kWide = 0xFFFFFFFF; // they stand elsewhere
    const ZipSizes other{local.packedSize, local.size};
    if (local.IsStreamed() || member.IsEncrypted() || other.packed == kWide ||
        other.plain == kWide || other == ZipSizes{member.packedSize, member.size})
        return;
    member.otherSizes = other;
    if (!Fits(member.WithOtherSizes(), dataAt, dataEnd))
        member.otherSizes.reset();
    else if (!Fits(member, dataAt, dataEnd))
        member = member.WithOtherSizes();
}

/// Sets `dataAt`, or says why there is no data.
std::string LocateData(clsByteWindow& archive, std::uint64_t dataEnd, ZipMember& member) {
    if (member.headerAt > dataEnd || dataEnd - member.headerAt < kZipLocalSize)
        return "its local header lies outside the archive";
    clsByteReader reader(archive.View(member.headerAt, kZipLocalSize));
    if (reader.U32() != kZipLocalSignature)
        return "its local header is damaged";
    reader.Skip(2); // version needed
    ZipMember local;
    const auto [nameSize, extraSize] = ReadSharedFields(reader, local);
    const std::uint64_t dataAt = member.headerAt + kZipLocalSize + nameSize + extraSize;
    CompareSizes(local, dataAt, dataEnd, member);
    if (dataAt > dataEnd || member.packedSize > dataEnd - dataAt)
        return "its data reaches beyond the archive";
    member.dataAt = dataAt;
    return {};
}

/// Systems that keep Unix's modes in the upper half of the attributes, and may leave the lower half
/// as it happens to be.
bool IsUnixLike(std::uint8_t host) {
    constexpr std::uint8_t kUnix = 3;
    constexpr std::uint8_t kMac = 7;
    constexpr std::uint8_t kMacOsX = 19;
    return host == kUnix || host == kMac || host == kMacOsX;
}

} // namespace

NameEncoding EncodingOf(const ZipMember& member, std::uint8_t host) {
    if (std::ranges::all_of(member.name, [](char c) { return (c & 0x80) == 0; }))
        return NameEncoding::Ascii;
    if ((member.flags & kFlagUtf8) != 0)
        return NameEncoding::Utf8;
    if (!IsUnixLike(host))
        return NameEncoding::Oem;
    // Archivers of these systems write their own UTF-8 names without the flag.
    return FromUtf8(member.name) ? NameEncoding::Utf8 : NameEncoding::Ansi;
}

bool IsFolderEntry(const ZipMember& member, std::uint8_t host) {
    constexpr std::uint32_t kDosFolder = 0x10;
    constexpr std::uint32_t kUnixFolder = 4;
    const bool isInCodePage =
        member.encoding == NameEncoding::Oem || member.encoding == NameEncoding::Ansi;
    if (member.name.ends_with('/') ||
        (isInCodePage ? WithoutTrailBytes(member.name) : member.name).ends_with('\\'))
        return true;
    const std::uint32_t unixType = member.externalAttributes >> 28;
    return unixType == kUnixFolder ||
           (unixType == 0 && !IsUnixLike(host) && (member.externalAttributes & kDosFolder) != 0);
}

bool IsSpecialEntry(const ZipMember& member, std::uint8_t host) {
    constexpr std::uint32_t kLink = 10;
    constexpr std::array<std::uint32_t, 3> kPlainTypes = {0, 4, 8};
    constexpr std::array<std::uint8_t, 6> kWithModes = {2, 3, 5, 16, 19, 30}; // VMS, Unix, BeOS ...
    const std::uint32_t unixType = member.externalAttributes >> 28;
    return unixType == kLink || (std::ranges::find(kWithModes, host) != kWithModes.end() &&
                                 std::ranges::find(kPlainTypes, unixType) == kPlainTypes.end());
}

void ApplyExtraFields(Bytes extra, ZipMember& member, std::uint32_t& disk) {
    constexpr std::uint16_t kWideValues = 0x0001;
    constexpr std::uint16_t kNtfs = 0x000A;
    constexpr std::uint16_t kUnixTime = 0x5455;
    constexpr std::uint16_t kUnicodeName = 0x7075;
    clsByteReader reader(extra);
    while (reader.Left() >= 4) {
        const std::uint16_t tag = reader.U16();
        const clsByteReader field(reader.Bytes(reader.U16()));
        if (!reader.Ok())
            return;
        switch (tag) {
        case kWideValues:
            ApplyWideValues(field, member, disk);
            break;
        case kNtfs:
            ApplyNtfsTimes(field, member.times);
            break;
        case kUnixTime:
            ApplyUnixTime(field, member);
            break;
        case kUnicodeName:
            ApplyUnicodeName(field, member);
            break;
        default:
            break;
        }
    }
}

void JudgeMember(clsByteWindow& archive, std::uint64_t dataEnd, ZipMember& member) {
    const std::string unlocated = LocateData(archive, dataEnd, member);
    if (member.refusal.empty())
        member.refusal = RefusalByDescription(member);
    if (member.refusal.empty())
        member.refusal = unlocated;
    if (member.refusal.empty() && !member.IsFolder())
        member.refusal = RefusalBySizes(member);
}

} // namespace vesk
