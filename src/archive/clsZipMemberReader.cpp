#include "archive/clsZipMemberReader.h"

#include "archive/ArchiveProblem.h"
#include "archive/clsCRC.h"
#include "archive/modZipInflate.h"

#include <libdeflate.h>

#include <algorithm>
#include <new>
#include <utility>

namespace vesk {

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::size_t kPiece = clsByteWindow::kLargestPiece;

void CheckCrc(const ZipMember& member, std::int32_t crc) {
    if (static_cast<std::uint32_t>(crc) != member.crc)
        throw ZipContentProblem("wrong CRC");
}

[[noreturn]] void ThrowWrongSize() {
    throw ZipContentProblem("its data does not have the declared size");
}

/// Size of the packed bytes of a member, and where they begin, without the cipher's header.
std::uint64_t RawSize(const ZipMember& member) {
    return member.packedSize - (member.IsEncrypted() ? ZipMember::kCipherHeaderSize : 0);
}
std::uint64_t RawAt(const ZipMember& member) {
    return member.dataAt + member.packedSize - RawSize(member);
}

/// The directory was compared with the archive's size; only one that shrinks meanwhile gives less.
void RequireWhole(std::size_t read, std::size_t wanted) {
    if (read != wanted)
        throw ArchiveProblem("the archive was cut off while it was read");
}

void Decrypt(Bytes locked, std::span<std::byte> plain, clsZipCipher& cipher) {
    std::ranges::transform(locked, plain.begin(), [&](std::byte b) { return cipher.Decrypt(b); });
}

} // namespace

clsZipMemberReader::clsZipMemberReader(ByteSource& archive, clsZipDirectory& directory,
                                       clsZipPasswords::Source password)
    : archive_(archive),
      window_(archive),
      passwords_(window_, directory, std::move(password)),
      inflater_(libdeflate_alloc_decompressor(), libdeflate_free_decompressor) {
    if (!inflater_)
        throw std::bad_alloc();
}

/// Does something with the member as it is described, and where its content speaks against that
/// and its local header has other sizes, with those.
template <class Use>
auto clsZipMemberReader::WithTrueSizes(const ZipMember& member, Use use) {
    try {
        return use(member);
    } catch (const ZipContentProblem&) {
        if (member.otherSizes) {
            try {
                return use(member.WithOtherSizes());
            } catch (const ZipContentProblem&) { // the first one is told
            }
        }
        throw;
    }
}

std::span<const std::byte> clsZipMemberReader::Read(const ZipMember& member) {
    if (!member.IsEncrypted())
        return WithTrueSizes(member, [this](const ZipMember& as) { return ReadWith(as, nullptr); });
    Bytes content;
    passwords_.Find(
        member, [&](clsZipCipher cipher) { content = ReadWith(member, &cipher); }, false);
    return content;
}

std::span<const std::byte> clsZipMemberReader::ReadWith(const ZipMember& member,
                                                        clsZipCipher* cipher) {
    const Bytes packed = PackedData(member, cipher);
    if (!member.IsDeflated()) {
        CheckCrc(member, clsCRC().CalculateBytes(packed));
        return packed;
    }
    const std::span<std::byte> content = inflated_.Of(member.size);
    // Without a place for the actual size the library insists on exactly the declared one.
    const auto result = libdeflate_deflate_decompress(inflater_.get(), packed.data(), packed.size(),
                                                      content.data(), content.size(), nullptr);
    if (result == LIBDEFLATE_BAD_DATA)
        throw ZipContentProblem("its data is damaged");
    if (result != LIBDEFLATE_SUCCESS)
        ThrowWrongSize();
    CheckCrc(member, clsCRC().CalculateBytes(content));
    return content;
}

Bytes clsZipMemberReader::RawPiece(const ZipMember& member, std::uint64_t from, std::size_t count) {
    const Bytes piece = window_.View(RawAt(member) + from, count);
    RequireWhole(piece.size(), count);
    return piece;
}

/// Small neighbours come out of one window.
Bytes clsZipMemberReader::RawData(const ZipMember& member) {
    const std::uint64_t size = RawSize(member);
    if (size <= kPiece)
        return RawPiece(member, 0, static_cast<std::size_t>(size));
    const std::span<std::byte> raw = raw_.Of(size);
    RequireWhole(archive_.Read(RawAt(member), raw), raw.size());
    return raw;
}

std::span<const std::byte> clsZipMemberReader::PackedData(const ZipMember& member,
                                                          clsZipCipher* cipher) {
    const Bytes raw = RawData(member);
    if (cipher == nullptr)
        return raw;
    const std::span<std::byte> plain = decrypted_.Of(raw.size());
    Decrypt(raw, plain, *cipher);
    return plain;
}

void clsZipMemberReader::Stream(const ZipMember& member, const Sink& sink) {
    // What was handed out cannot be taken back, so what is in doubt is proven in a run of its own.
    const auto onlyTick = [&](Bytes, std::uint64_t) { sink({}, 0); };
    if (member.otherSizes)
        return StreamWith(WithTrueSizes(member,
                                        [&](const ZipMember& as) {
                                            StreamWith(as, nullptr, onlyTick);
                                            return as;
                                        }),
                          nullptr, sink);
    if (!member.IsEncrypted())
        return StreamWith(member, nullptr, sink);
    const auto prove = [&](clsZipCipher cipher) { StreamWith(member, &cipher, onlyTick); };
    clsZipCipher cipher = passwords_.Find(member, prove, true);
    StreamWith(member, &cipher, sink);
}

void clsZipMemberReader::StreamWith(const ZipMember& member, clsZipCipher* cipher,
                                    const Sink& sink) {
    const std::uint64_t packedSize = RawSize(member);
    std::uint64_t used = 0;
    const auto nextInput = [&] {
        const Bytes piece =
            RawPiece(member, used,
                     static_cast<std::size_t>(std::min<std::uint64_t>(kPiece, packedSize - used)));
        used += piece.size();
        if (cipher == nullptr)
            return piece;
        const std::span<std::byte> plain = decrypted_.Of(piece.size());
        Decrypt(piece, plain, *cipher);
        return Bytes(plain);
    };
    clsCRC crc;
    std::uint64_t size = 0;
    const auto output = [&](Bytes piece) {
        size += piece.size();
        if (size > member.size)
            ThrowWrongSize();
        crc.AddBytes(piece);
        sink(piece, used);
    };
    if (member.IsDeflated())
        InflateInPieces(nextInput, inflated_.Of(kPiece), output);
    else
        while (used < packedSize)
            output(nextInput());
    if (size != member.size)
        ThrowWrongSize();
    CheckCrc(member, crc.Value());
}

} // namespace vesk
