#pragma once

#include "archive/ArchiveProblem.h"
#include "archive/ByteSource.h"
#include "archive/ZipMember.h"
#include "archive/clsByteWindow.h"
#include "archive/modZipEnd.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vesk {

/// An archive's central directory. It is read as its members are asked for and not held, so that an
/// archive of a hundred thousand members takes no more memory than one of a hundred. Asking for
/// one member after the other is quick, for any other costs a few records more.
///
/// What the archive claims and does not fit the bytes that are there ends as a `refusal` of the
/// member; no memory is given for a claim. Where the directory is damaged, what can be read of it
/// is given; where it is missing, what the members' own headers tell (which is held); and Problem()
/// says so.
class clsZipDirectory {
public:
    /// @param archive must outlive this object
    /// @throws ArchiveProblem when the bytes hold no readable archive at all, what the source
    /// throws
    explicit clsZipDirectory(ByteSource& archive);

    /// How many members can be read.
    [[nodiscard]] std::size_t Count() const { return count_; }
    /// The comment on the whole.
    [[nodiscard]] const std::string& Comment() const { return comment_; }
    /// What is wrong with the directory as a whole; empty when nothing is.
    [[nodiscard]] const std::string& Problem() const { return problem_; }
    /// Sum of the packed sizes of the members whose data is there.
    [[nodiscard]] std::uint64_t PackedSize() const { return packedSize_; }

    /// A member as it is described, neither located nor judged. @param number below Count()
    /// @throws what the source throws
    ZipMember Described(std::size_t number);

    /// A member, located and judged. @param number below Count() @throws what the source throws
    ZipMember Member(std::size_t number);

private:
    /// Records are found from every sixteenth on.
    static constexpr std::size_t kMarkEvery = 16;

    void ReadDirectory(ZipEnd end);
    void ReadLocalHeaders();
    void CountRecords(std::uint64_t at);
    void CheckShift();
    [[nodiscard]] std::uint64_t RecordEnd(std::uint64_t at);
    [[nodiscard]] std::pair<std::uint64_t, std::uint64_t> NextRecord(std::uint64_t at);
    ZipMember ReadRecord(std::uint64_t at, std::uint64_t end);
    void FindOverlaps();
    /// What a member takes of the file.
    struct Extent {
        std::uint64_t start = 0;
        std::size_t number = 0;
        std::uint64_t end = 0;
        std::uint64_t otherEnd = 0; ///< By the sizes of its local header, when they contradict.
    };
    static Extent ExtentOf(const ZipMember& member, std::size_t number);
    void CollectOverlaps();

    ByteSource& archive_;
    clsByteWindow records_, headers_;
    std::uint64_t recordsEnd_ = 0;
    std::uint64_t dataEnd_ = 0; ///< No member's data reaches beyond.
    std::uint64_t shift_ = 0;   ///< Of positions; may wrap.
    std::size_t count_ = 0;
    std::uint64_t packedSize_ = 0;
    std::string comment_, problem_;
    std::vector<std::uint64_t> marks_; ///< Places of some records.
    std::size_t nextNumber_ = 0;       ///< The member whose record is found from nextAt_ on.
    std::uint64_t nextAt_ = 0;
    std::vector<ZipMember> withoutRecords_; ///< All members, when the directory is missing.
    std::vector<std::size_t> overlapping_;  ///< Sorted.
    std::vector<std::size_t> withoutOther_; ///< Members whose other sizes reach too far, sorted.
};

} // namespace vesk
