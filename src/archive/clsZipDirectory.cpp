#include "archive/clsZipDirectory.h"

#include "archive/clsByteReader.h"
#include "archive/modZipFields.h"
#include "archive/modZipJudge.h"
#include "archive/modZipRecovery.h"

#include <algorithm>
#include <optional>
#include <tuple>

namespace vesk {

namespace {

constexpr std::size_t kRecordSize = 46;

/// Records follow one another; headers have members' data between them.
constexpr std::size_t kRecordsPiece = std::size_t{32} << 10;
constexpr std::size_t kHeadersPiece = std::size_t{4} << 10;

} // namespace

clsZipDirectory::clsZipDirectory(ByteSource& archive)
    : archive_(archive), records_(archive, kRecordsPiece), headers_(archive, kHeadersPiece) {
    std::optional<ZipEnd> end = FindZipEnd(archive);
    const bool isEmpty = end && end->count == 0;
    if (end)
        ReadDirectory(std::move(*end));
    if (count_ == 0 && !isEmpty)
        ReadLocalHeaders();
    FindOverlaps();
}

void clsZipDirectory::ReadDirectory(ZipEnd end) {
    if (end.spansDisks)
        throw ArchiveProblem("one part of an archive that spans several disks");
    comment_ = std::move(end.comment);
    shift_ = end.directoryStart - end.directoryOffset;
    recordsEnd_ = end.directoryEnd;
    dataEnd_ = end.directoryStart;
    CountRecords(end.directoryStart);
    CheckShift();
    if ((count_ & end.countMask) != end.count)
        problem_ = "the central directory holds " + std::to_string(count_) +
                   " readable members, its end record says " + std::to_string(end.count);
}

/// For an archive that was cut off.
void clsZipDirectory::ReadLocalHeaders() {
    withoutRecords_ = MembersByLocalHeaders(archive_);
    count_ = withoutRecords_.size();
    if (count_ == 0)
        throw ArchiveProblem("no central directory: not a ZIP archive, or its end is missing");
    dataEnd_ = archive_.Size();
    comment_.clear();
    problem_ = "its end is missing or damaged; only what was found without it, " +
               std::to_string(count_) + " members, is extracted";
}

void clsZipDirectory::CountRecords(std::uint64_t at) {
    while (true) {
        const auto [start, end] = NextRecord(at);
        if (start == end)
            return;
        if (count_++ % kMarkEvery == 0)
            marks_.push_back(start);
        at = end;
    }
}

/// Positions count from the archive's own first byte, unless what the end record says of that is
/// wrong itself: then they count from the file's, where the first header shows it. Unsigned
/// arithmetic may wrap here, what comes out is compared with the file's size before it is used.
void clsZipDirectory::CheckShift() {
    if (count_ == 0)
        return;
    const std::uint64_t first = Described(0).headerAt;
    if (!HasSignature(headers_, first, kZipLocalSignature) &&
        HasSignature(headers_, first - shift_, kZipLocalSignature))
        shift_ = 0;
}

/// @return where the record ends; 0 when it runs off the directory's end
std::uint64_t clsZipDirectory::RecordEnd(std::uint64_t at) {
    if (recordsEnd_ - at < kRecordSize)
        return 0;
    clsByteReader reader(records_.View(at, kRecordSize));
    reader.Skip(28);
    const std::uint64_t nameSize = reader.U16();
    const std::uint64_t extraSize = reader.U16();
    const std::uint64_t commentSize = reader.U16();
    const std::uint64_t size = kRecordSize + nameSize + extraSize + commentSize;
    return recordsEnd_ - at < size ? 0 : at + size;
}

/// Start and end of the next record; two equal ones when there is none. Behind a damaged record the
/// next one may be whole.
std::pair<std::uint64_t, std::uint64_t> clsZipDirectory::NextRecord(std::uint64_t at) {
    while (const auto found = FindSignature(records_, at, recordsEnd_, kZipRecordSignature)) {
        if (const std::uint64_t end = RecordEnd(*found); end != 0)
            return {*found, end};
        at = *found + 4;
    }
    return {at, at};
}

ZipMember clsZipDirectory::ReadRecord(std::uint64_t at, std::uint64_t end) {
    ZipMember member;
    clsByteReader reader(records_.View(at, static_cast<std::size_t>(end - at)));
    reader.Skip(5); // its signature, the version of the maker
    const std::uint8_t host = reader.U8();
    reader.Skip(2); // version needed
    const auto [nameSize, extraSize] = ReadSharedFields(reader, member);
    reader.Skip(2); // size of the comment
    std::uint32_t disk = reader.U16();
    reader.Skip(2); // internal attributes
    member.externalAttributes = reader.U32();
    member.headerAt = reader.U32();
    member.name = reader.Text(nameSize);
    const auto extra = reader.Bytes(extraSize);
    member.encoding = EncodingOf(member, host);
    member.folder = IsFolderEntry(member, host);
    member.special = IsSpecialEntry(member, host);
    ApplyExtraFields(extra, member, disk);
    if (disk != 0)
        member.refusal = "lies on another disk of the archive";
    member.headerAt += shift_;
    return member;
}

ZipMember clsZipDirectory::Described(std::size_t number) {
    if (!withoutRecords_.empty())
        return withoutRecords_[number];
    if (number < nextNumber_ || number - nextNumber_ >= kMarkEvery || nextAt_ == 0) {
        nextNumber_ = number - number % kMarkEvery;
        nextAt_ = marks_[number / kMarkEvery];
    }
    std::pair<std::uint64_t, std::uint64_t> record;
    do {
        record = NextRecord(nextAt_);
        nextAt_ = record.second;
    } while (nextNumber_++ != number);
    return ReadRecord(record.first, record.second);
}

ZipMember clsZipDirectory::Member(std::size_t number) {
    ZipMember member = Described(number);
    JudgeMember(headers_, dataEnd_, member);
    if (std::ranges::binary_search(withoutOther_, number))
        member.otherSizes.reset();
    if (member.refusal.empty() && std::ranges::binary_search(overlapping_, number))
        member.refusal = "it overlaps another member";
    return member;
}

/// No two members may share bytes: no archiver writes such a thing, and a small file can be blown
/// up without end with it. Nearly all archives hold their members in the order of their data, and
/// that is seen without remembering them.
void clsZipDirectory::FindOverlaps() {
    bool isInOrder = true;
    Extent before;
    for (std::size_t number = 0; number < count_; ++number) {
        const ZipMember member = Member(number);
        if (!member.IsLocated())
            continue;
        packedSize_ += member.packedSize;
        const Extent extent = ExtentOf(member, number);
        isInOrder = isInOrder && extent.start >= before.end;
        if (extent.start < before.otherEnd)
            withoutOther_.push_back(before.number);
        before = extent;
    }
    if (isInOrder)
        return;
    withoutOther_.clear();
    CollectOverlaps();
}

clsZipDirectory::Extent clsZipDirectory::ExtentOf(const ZipMember& member, std::size_t number) {
    const std::uint64_t end = member.dataAt + member.packedSize;
    return {member.headerAt, number, end,
            member.otherSizes ? member.dataAt + member.otherSizes->packed : end};
}

/// Of those that share bytes the first in the file has them; sizes that reach into the next member
/// are not tried.
void clsZipDirectory::CollectOverlaps() {
    std::vector<Extent> extents;
    for (std::size_t number = 0; number < count_; ++number)
        if (const ZipMember member = Member(number); member.IsLocated())
            extents.push_back(ExtentOf(member, number));
    std::ranges::sort(extents, {},
                      [](const Extent& extent) { return std::tuple(extent.start, extent.number); });
    std::uint64_t used = 0;
    const Extent* before = nullptr;
    for (const Extent& extent : extents) {
        if (extent.start < used)
            overlapping_.push_back(extent.number);
        if (before && extent.start < before->otherEnd)
            withoutOther_.push_back(before->number);
        used = std::max(used, extent.end);
        before = &extent;
    }
    std::ranges::sort(overlapping_);
    std::ranges::sort(withoutOther_);
}

} // namespace vesk
