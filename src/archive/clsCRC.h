#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace vesk {

/// Checksums of bytes, texts and files: CRC-32 (as ZIP has it) or CRC-16/XMODEM, with a running
/// register so that data can be fed in pieces.
class clsCRC {
public:
    /// Selects CRC-32 (true, the default) or CRC-16 (false) and clears both registers.
    void SetAlgorithm(bool crc32);
    [[nodiscard]] bool Algorithm() const { return crc32_; }

    /// Clears both registers, whatever the selection.
    void Clear();

    /// Feeds bytes into the selected register. @return Value()
    std::int32_t AddBytes(std::span<const std::byte> bytes);
    std::int32_t AddString(std::string_view text);

    /// The same from cleared registers.
    std::int32_t CalculateBytes(std::span<const std::byte> bytes);
    std::int32_t CalculateString(std::string_view text);

    /// Checksum of a whole file as upper-case hexadecimal text without leading zeros ("12ABCD"):
    /// the form that the catalogue holds. Empty for a missing, unreadable or empty file,
    /// which leave the register as it was when nothing could be read.
    /// @param meanwhile called every few megabytes, so that a window stays alive
    std::string CalculateFile(const std::string& path, const std::function<void()>& meanwhile = {});

    /// The checksum of what was fed so far.
    [[nodiscard]] std::int32_t Value() const;

    /// Value() as CalculateFile gives it.
    [[nodiscard]] std::string Text() const;

    /// Stores a register as it is. Deliberately not the inverse of Value(): for CRC-32 reading
    /// inverts and storing does not, and both sides are relied on.
    void SetValue(std::int32_t value);

private:
    bool crc32_ = true;
    std::uint32_t register32_ = 0xFFFFFFFF;
    std::uint32_t register16_ = 0;
};

} // namespace vesk
