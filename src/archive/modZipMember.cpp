#include "archive/modZipMember.h"

#include "archive/clsCRC.h"

#include <libdeflate.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <new>

namespace vesk {

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::array<std::uint32_t, 256> MakeCrcTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t n = 0; n < table.size(); ++n) {
        table[n] = n;
        for (int bit = 0; bit < 8; ++bit)
            table[n] = (table[n] >> 1) ^ ((table[n] & 1) != 0 ? 0xEDB88320 : 0);
    }
    return table;
}

/// One byte fed into a CRC-32 register: the cipher mixes its keys with it.
std::uint32_t CrcStep(std::uint32_t value, std::uint32_t byte) {
    static constexpr std::array<std::uint32_t, 256> kTable = MakeCrcTable();
    return (value >> 8) ^ kTable[(value ^ byte) & 0xFF];
}

void CheckCrc(const ZipMember& member, Bytes content) {
    if (static_cast<std::uint32_t>(clsCRC().CalculateBytes(content)) != member.crc)
        throw ZipProblem(member.IsEncrypted() ? "wrong CRC or wrong password, not written"
                                              : "wrong CRC, not written");
}

/// The last byte of the header repeats one that the entry holds, so that a wrong password is seen
/// early. While sizes were not known yet, writers had no CRC and took the time instead.
std::uint8_t PasswordCheck(const ZipMember& member) {
    constexpr std::uint16_t kFlagStreamed = 1U << 3;
    return static_cast<std::uint8_t>((member.flags & kFlagStreamed) != 0 ? member.dosTime >> 8
                                                                         : member.crc >> 24);
}

std::optional<ZipCipher> TryPassword(const ZipMember& member, Bytes header,
                                     std::string_view password) {
    ZipCipher cipher(password);
    std::byte last{};
    for (const std::byte byte : header)
        last = cipher.Decrypt(byte);
    if (std::to_integer<std::uint8_t>(last) != PasswordCheck(member))
        return std::nullopt;
    return cipher;
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

ZipCipher::ZipCipher(std::string_view password) {
    for (const char c : password)
        Update(static_cast<std::uint8_t>(c));
}

std::byte ZipCipher::Decrypt(std::byte cipher) {
    const std::uint32_t mixed = (keys_[2] & 0xFFFF) | 2;
    const auto plain = static_cast<std::uint8_t>(std::to_integer<std::uint32_t>(cipher) ^
                                                 (mixed * (mixed ^ 1)) >> 8);
    Update(plain);
    return std::byte{plain};
}

void ZipCipher::Update(std::uint8_t plain) {
    keys_[0] = CrcStep(keys_[0], plain);
    keys_[1] = (keys_[1] + (keys_[0] & 0xFF)) * 134775813 + 1;
    keys_[2] = CrcStep(keys_[2], keys_[1] >> 24);
}

ZipMemberReader::ZipMemberReader(Bytes archive, PasswordSource password)
    : archive_(archive),
      askPassword_(std::move(password)),
      inflater_(libdeflate_alloc_decompressor(), libdeflate_free_decompressor) {
    if (!inflater_)
        throw std::bad_alloc();
}

std::span<const std::byte> ZipMemberReader::Read(const ZipMember& member) {
    if (member.IsDeflated()) {
        const std::span<std::byte> content = inflated_.Of(member.size);
        InflateInto(member, content);
        return content;
    }
    const Bytes content = PackedData(member);
    CheckCrc(member, content);
    return content;
}

void ZipMemberReader::InflateInto(const ZipMember& member, std::span<std::byte> target) {
    const Bytes packed = PackedData(member);
    // Without a place for the actual size the library insists on exactly the declared one.
    const auto result = libdeflate_deflate_decompress(inflater_.get(), packed.data(), packed.size(),
                                                      target.data(), target.size(), nullptr);
    if (result == LIBDEFLATE_BAD_DATA)
        throw ZipProblem("its data is damaged, not written");
    if (result != LIBDEFLATE_SUCCESS)
        throw ZipProblem("its data does not have the declared size, not written");
    CheckCrc(member, target);
}

std::span<const std::byte> ZipMemberReader::PackedData(const ZipMember& member) {
    const Bytes raw = archive_.subspan(static_cast<std::size_t>(member.dataAt),
                                       static_cast<std::size_t>(member.packedSize));
    if (!member.IsEncrypted())
        return raw;
    ZipCipher cipher = Unlock(member, raw.first(ZipMember::kCipherHeaderSize));
    const Bytes locked = raw.subspan(ZipMember::kCipherHeaderSize);
    const std::span<std::byte> plain = decrypted_.Of(locked.size());
    std::ranges::transform(locked, plain.begin(), [&](std::byte b) { return cipher.Decrypt(b); });
    return plain;
}

ZipCipher ZipMemberReader::Unlock(const ZipMember& member, Bytes header) {
    constexpr int kTries = 3;
    if (knownPassword_)
        if (const auto cipher = TryPassword(member, header, *knownPassword_))
            return *cipher;
    for (int tries = 0; askMore_ && tries < kTries; ++tries) {
        std::optional<std::string> password = askPassword_ ? askPassword_(member) : std::nullopt;
        if (!password) {
            askMore_ = false;
            break;
        }
        if (const auto cipher = TryPassword(member, header, *password)) {
            knownPassword_ = std::move(password);
            return *cipher;
        }
    }
    throw ZipProblem(askMore_ ? "wrong password" : "is encrypted, no password given");
}

} // namespace vesk
