#include "archive/clsZipMemberReader.h"

#include "archive/clsCRC.h"
#include "archive/modZipInflate.h"

#include <libdeflate.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <new>

namespace vesk {

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::size_t kPiece = std::size_t{256} << 10;

void CheckCrc(const ZipMember& member, std::int32_t crc) {
    if (static_cast<std::uint32_t>(crc) != member.crc)
        throw ZipContentProblem("wrong CRC");
}

[[noreturn]] void ThrowWrongSize() {
    throw ZipContentProblem("its data does not have the declared size");
}

/// The packed bytes of a member without the cipher's header.
Bytes RawData(Bytes archive, const ZipMember& member) {
    const Bytes raw = archive.subspan(static_cast<std::size_t>(member.dataAt),
                                      static_cast<std::size_t>(member.packedSize));
    return raw.subspan(member.IsEncrypted() ? ZipMember::kCipherHeaderSize : 0);
}

void Decrypt(Bytes locked, std::span<std::byte> plain, ZipCipher& cipher) {
    std::ranges::transform(locked, plain.begin(), [&](std::byte b) { return cipher.Decrypt(b); });
}

} // namespace

std::span<std::byte> ReusedBuffer::Of(std::uint64_t size) {
    if (size > std::numeric_limits<std::size_t>::max() / 4)
        throw std::bad_alloc();
    const auto wanted = static_cast<std::size_t>(size);
    if (wanted > capacity_) {
        bytes_.reset(); // never both blocks at a time
        capacity_ = 0;
        const std::size_t rounded = std::bit_ceil(wanted);
        bytes_ = std::make_unique_for_overwrite<std::byte[]>(rounded);
        capacity_ = rounded;
    }
    return {bytes_.get(), wanted};
}

clsZipMemberReader::clsZipMemberReader(Bytes archive, std::span<const ZipMember> members,
                                       clsZipPasswords::Source password)
    : archive_(archive),
      passwords_(archive, members, std::move(password)),
      inflater_(libdeflate_alloc_decompressor(), libdeflate_free_decompressor) {
    if (!inflater_)
        throw std::bad_alloc();
}

std::span<const std::byte> clsZipMemberReader::Read(const ZipMember& member) {
    if (!member.IsEncrypted())
        return ReadWith(member, nullptr);
    Bytes content;
    passwords_.Find(
        member, [&](ZipCipher cipher) { content = ReadWith(member, &cipher); }, false);
    return content;
}

std::span<const std::byte> clsZipMemberReader::ReadWith(const ZipMember& member,
                                                        ZipCipher* cipher) {
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

std::span<const std::byte> clsZipMemberReader::PackedData(const ZipMember& member,
                                                          ZipCipher* cipher) {
    const Bytes raw = RawData(archive_, member);
    if (cipher == nullptr)
        return raw;
    const std::span<std::byte> plain = decrypted_.Of(raw.size());
    Decrypt(raw, plain, *cipher);
    return plain;
}

void clsZipMemberReader::Stream(const ZipMember& member, const Sink& sink) {
    if (!member.IsEncrypted())
        return StreamWith(member, nullptr, sink);
    // What was handed out cannot be taken back, so a new password is proven in a run of its own.
    const auto prove = [&](ZipCipher cipher) {
        StreamWith(member, &cipher, [&](Bytes, std::uint64_t) { sink({}, 0); });
    };
    ZipCipher cipher = passwords_.Find(member, prove, true);
    StreamWith(member, &cipher, sink);
}

void clsZipMemberReader::StreamWith(const ZipMember& member, ZipCipher* cipher, const Sink& sink) {
    const Bytes packed = RawData(archive_, member);
    std::size_t used = 0;
    const auto nextInput = [&] {
        const Bytes piece = packed.subspan(used, std::min(kPiece, packed.size() - used));
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
        while (used < packed.size())
            output(nextInput());
    if (size != member.size)
        ThrowWrongSize();
    CheckCrc(member, crc.Value());
}

} // namespace vesk
