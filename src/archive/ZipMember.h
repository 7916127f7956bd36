#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace vesk {

/// What a stored name's bytes mean.
enum class NameEncoding {
    Ascii, ///< The same in every code page.
    Utf8,
    Oem, ///< The code page of DOS.
    Ansi ///< The system's own: names from systems that never had a DOS code page.
};

/// Times in units of 100 ns since 1601, UTC: the form that the file system takes.
struct ZipTimes {
    std::optional<std::uint64_t> modified, accessed, created;
};

/// What a member takes in the archive and outside.
struct ZipSizes {
    std::uint64_t packed = 0;
    std::uint64_t plain = 0;

    bool operator==(const ZipSizes&) const = default;
};

/// One member as the central directory describes it. Positions count from the first byte of the
/// file, whatever stands in front of the archive.
struct ZipMember {
    std::string name; ///< Bytes as stored, see `encoding`.
    NameEncoding encoding = NameEncoding::Ascii;
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    std::uint16_t dosTime = 0;
    std::uint16_t dosDate = 0;
    std::uint32_t crc = 0;
    std::uint32_t externalAttributes = 0;
    std::uint64_t packedSize = 0;
    std::uint64_t size = 0;
    std::uint64_t headerAt = 0;
    std::uint64_t dataAt = 0; ///< Behind the local header; 0 unless all packed data is there.
    ZipTimes times;
    std::optional<ZipSizes> otherSizes; ///< Those of the local header, when they contradict.
    bool folder = false;                ///< By its name's end or by its attributes.
    bool special = false;               ///< Neither a file nor a folder.
    std::string refusal; ///< Why it must not be extracted; empty when nothing speaks against it.

    /// The cipher's own bytes in front of an encrypted member's packed data.
    static constexpr std::size_t kCipherHeaderSize = 12;

    /// The same member with the sizes of its local header.
    [[nodiscard]] ZipMember WithOtherSizes() const {
        ZipMember other = *this;
        other.packedSize = otherSizes->packed;
        other.size = otherSizes->plain;
        other.otherSizes.reset();
        return other;
    }

    /// Whether it stands for a folder.
    [[nodiscard]] bool IsFolder() const { return folder; }

    /// Whether its packed data is known to lie in the archive as a whole, from `dataAt` on.
    [[nodiscard]] bool IsLocated() const { return dataAt != 0; }

    /// Whether its data is encrypted, in whatever way.
    [[nodiscard]] bool IsEncrypted() const { return (flags & 1) != 0; }

    /// Its header was written before its CRC and sizes were known.
    [[nodiscard]] bool IsStreamed() const { return (flags & (1U << 3)) != 0; }

    /// Whether its data is compressed with deflate.
    [[nodiscard]] bool IsDeflated() const { return method == 8; }
};

} // namespace vesk
