#pragma once

#include "archive/ByteSource.h"
#include "archive/ZipMember.h"
#include "archive/clsByteWindow.h"
#include "archive/clsReusedBuffer.h"
#include "archive/clsZipCipher.h"
#include "archive/clsZipDirectory.h"
#include "archive/clsZipPasswords.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

struct libdeflate_decompressor;

namespace vesk {

/// Gives the content of an archive's members, checked against their CRC. For members without a
/// `refusal` only.
class clsZipMemberReader {
public:
    /// Takes the next piece of a member's content. @param packedDone packed bytes used so far
    using Sink = std::function<void(std::span<const std::byte> piece, std::uint64_t packedDone)>;

    /// Members of this size and larger are to be read in pieces: inflated whole they would take
    /// more than a tenth of a second on machines ten times as slow as today's, and memory without
    /// bound. Smaller ones are read faster whole: one just below takes 10 ms, one just above 17.
    static constexpr std::uint64_t kLargeMember = std::uint64_t{4} << 20;
    [[nodiscard]] static bool IsLarge(const ZipMember& member) {
        return member.size >= kLargeMember || member.packedSize >= kLargeMember ||
               (member.otherSizes && IsLarge(member.WithOtherSizes()));
    }

    /// @param archive must outlive the reader, as must @param directory
    clsZipMemberReader(ByteSource& archive, clsZipDirectory& directory,
                       clsZipPasswords::Source password);
    clsZipMemberReader(const clsZipMemberReader&) = delete;
    clsZipMemberReader& operator=(const clsZipMemberReader&) = delete;
    ~clsZipMemberReader() = default;

    /// The member's whole content in memory of the reader, valid until the next call.
    /// @throws ArchiveProblem, std::bad_alloc, what the archive throws
    std::span<const std::byte> Read(const ZipMember& member);

    /// The same in pieces, of which some may be empty. Only when it returns were they right.
    /// @throws ArchiveProblem, std::bad_alloc, what the archive and the sink throw
    void Stream(const ZipMember& member, const Sink& sink);

private:
    template <class Use>
    auto WithTrueSizes(const ZipMember& member, Use use);
    std::span<const std::byte> RawPiece(const ZipMember& member, std::uint64_t from,
                                        std::size_t count);
    std::span<const std::byte> RawData(const ZipMember& member);
    std::span<const std::byte> PackedData(const ZipMember& member, clsZipCipher* cipher);
    std::span<const std::byte> ReadWith(const ZipMember& member, clsZipCipher* cipher);
    void StreamWith(const ZipMember& member, clsZipCipher* cipher, const Sink& sink);

    ByteSource& archive_;
    clsByteWindow window_;
    clsZipPasswords passwords_;
    clsReusedBuffer raw_, decrypted_, inflated_;
    std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)> inflater_;
};

} // namespace vesk
