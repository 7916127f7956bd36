#pragma once

#include "archive/modZipDirectory.h"

#include <array>
#include <functional>
#include <memory>

struct libdeflate_decompressor;

namespace vesk {

/// Memory that is used again and again and grows as needed; never cleared.
class ReusedBuffer {
public:
    /// @return `size` bytes of undefined content, valid until the next call.
    /// @throws std::bad_alloc
    std::span<std::byte> Of(std::uint64_t size);

private:
    std::unique_ptr<std::byte[]> bytes_;
    std::size_t capacity_ = 0;
};

/// ZIP's traditional encryption: a stream of bytes from three running keys. Weak, but in use.
class ZipCipher {
public:
    explicit ZipCipher(std::string_view password);
    std::byte Decrypt(std::byte cipher);

private:
    void Update(std::uint8_t plain);
    std::array<std::uint32_t, 3> keys_ = {0x12345678, 0x23456789, 0x34567890};
};

/// Gives the content of an archive's members, checked against their CRC. For members without a
/// `refusal` only.
class ZipMemberReader {
public:
    /// Asked for a password; nothing means there is none, and it is not asked again.
    using PasswordSource = std::function<std::optional<std::string>(const ZipMember& member)>;

    /// @param archive must outlive the reader
    ZipMemberReader(std::span<const std::byte> archive, PasswordSource password);

    /// The member's whole content, in the archive itself or in memory of the reader; valid until
    /// the next call. @throws ZipProblem, std::bad_alloc
    std::span<const std::byte> Read(const ZipMember& member);

    /// Inflates a deflated member straight into `target`, which has exactly the member's size.
    /// After a failure its content is undefined. @throws ZipProblem, std::bad_alloc
    void InflateInto(const ZipMember& member, std::span<std::byte> target);

private:
    std::span<const std::byte> PackedData(const ZipMember& member);
    ZipCipher Unlock(const ZipMember& member, std::span<const std::byte> header);

    std::span<const std::byte> archive_;
    PasswordSource askPassword_;
    std::optional<std::string> knownPassword_;
    bool askMore_ = true;
    ReusedBuffer decrypted_, inflated_;
    std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)> inflater_;
};

} // namespace vesk
