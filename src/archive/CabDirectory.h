#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

/// A cabinet's folder: one run of compressed data that holds one member after the other. It has
/// nothing to do with folders of the file system.
struct CabFolder {
    std::uint32_t dataAt = 0;  ///< Position of its first data block in the file.
    std::uint16_t blocks = 0;  ///< Number of its data blocks, as claimed.
    std::uint16_t packing = 0; ///< Method in the lowest four bits, its settings above.

    // Found by the judgement of the data:
    std::uint16_t goodBlocks = 0;   ///< Blocks that are there and undamaged, from the first on.
    std::uint64_t goodPacked = 0;   ///< Bytes that they take in the file, headers included.
    std::uint64_t goodUnpacked = 0; ///< Bytes that they stand for.
    std::string fault;              ///< Why no more than that can be used; empty when all can.
};

/// One member as the cabinet's directory describes it.
struct CabEntry {
    std::string name; ///< Bytes as stored: UTF-8 if the attribute says so, else ANSI.
    std::uint32_t size = 0;
    std::uint32_t offset = 0; ///< Of its first byte in its folder's unpacked data.
    std::uint16_t folder = 0; ///< Index, or one of the marks below.
    std::uint16_t dosDate = 0;
    std::uint16_t dosTime = 0;
    std::uint16_t attributes = 0;
    std::string refusal;  ///< Why it must not be extracted; empty when nothing speaks against it.
    bool leftOut = false; ///< The refusal is for the name, not for damage.

    /// Another member before it that has the same data: makers of cabinets store equal files once.
    std::optional<std::size_t> twin;
    bool hasTwin = false; ///< It is such a member itself.

    static constexpr std::uint16_t kFromPrevious = 0xFFFD;
    static constexpr std::uint16_t kToNext = 0xFFFE;
    static constexpr std::uint16_t kFromPreviousToNext = 0xFFFF;

    /// Whether its name is in UTF-8, and not in the code page.
    [[nodiscard]] bool IsUtf8() const { return (attributes & 0x80) != 0; }
};

/// What the headers of a cabinet say.
struct CabDirectory {
    std::uint8_t blockReserve = 0; ///< Bytes between each data block's header and its data.
    bool continues = false;        ///< A further cabinet belongs to this one.
    std::vector<CabFolder> folders;
    std::vector<CabEntry> entries;
};

} // namespace vesk
