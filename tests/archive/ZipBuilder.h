#pragma once

#include "archive/clsCRC.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vesk::test {

/// A little-endian field; fields are joined with "+".
template <int kBytes>
std::string Field(std::uint64_t value) {
    std::string text;
    for (int i = 0; i < kBytes; ++i)
        text += static_cast<char>(value >> (8 * i) & 0xFF);
    return text;
}
constexpr auto U8 = Field<1>;
constexpr auto U16 = Field<2>;
constexpr auto U32 = Field<4>;
constexpr auto U64 = Field<8>;

/// One extra field.
inline std::string Extra(std::uint16_t tag, const std::string& data) {
    return U16(tag) + U16(data.size()) + data;
}

inline std::uint32_t CrcOf(const std::string& text) {
    return static_cast<std::uint32_t>(clsCRC().CalculateString(text));
}

/// The text as one deflate block without compression.
inline std::string Deflated(const std::string& text) {
    return U8(1) + U16(text.size()) + U16(~text.size()) + text;
}

/// A member, field by field; a test changes the field it is about.
struct TestMember {
    std::string name = "a.txt";
    std::string data; ///< As it lies in the archive.
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    std::uint16_t time = 0x6000; ///< 12:00:00
    std::uint16_t date = 0x5A21; ///< 2025-01-01
    std::uint32_t crc = 0;
    std::uint64_t size = 0;
    std::optional<std::uint32_t> packedSize; ///< The data's own when not set.
    std::optional<std::uint32_t> offset;     ///< The local header's own when not set.
    std::uint8_t host = 0;                   ///< 0 DOS, 3 Unix
    std::uint16_t disk = 0;
    std::uint32_t attributes = 0;
    std::string extra;
    std::uint32_t localSignature = 0x04034B50;
    std::optional<std::string>
        localSizes;     ///< CRC and sizes in front of the data; the same if not set.
    std::string behind; ///< Descriptor behind the data, instead of sizes in front of it.

    static TestMember Stored(const std::string& name, const std::string& text) {
        TestMember member;
        member.name = name;
        member.data = text;
        member.size = text.size();
        member.crc = CrcOf(text);
        return member;
    }
    static TestMember Packed(const std::string& name, const std::string& text) {
        TestMember member = Stored(name, text);
        member.data = Deflated(text);
        member.method = 8;
        return member;
    }
    /// "secret text" under the password "pass", as an archiver wrote it.
    static TestMember Encrypted(const std::string& name) {
        TestMember member = Stored(name, "secret text");
        member.data = std::string("\x40\x9D\x13\x30\x49\x22\x68\x1C\x7B\x0D\x3E\xA7\x2A\xF1\xFA"
                                  "\x58\x2C\x95\xD5\x3F\x6E\xC7\xAE",
                                  23);
        member.flags = 9; // encrypted, streamed: the time checks the password
        member.time = 0x4379;
        return member;
    }
    /// As a streaming archiver writes it: no sizes in front of the data, but behind it.
    static TestMember Streamed(const std::string& name, const std::string& text) {
        TestMember member = Packed(name, text);
        member.flags = 8;
        member.behind =
            U32(0x08074B50) + U32(member.crc) + U32(member.data.size()) + U32(text.size());
        return member;
    }
};

/// The fields of the end of an archive that a test may want to be wrong.
struct TestEnd {
    std::string comment;
    std::uint16_t disk = 0;
    std::optional<std::uint16_t> count;
    std::optional<std::uint64_t> offset; ///< Of the central directory; right when not set.
    std::optional<std::uint32_t> size;   ///< The same.
    bool wide = false; ///< All values in the zip64 records, the narrow ones saturated.
};

inline std::string MakeZip(const std::vector<TestMember>& members, const TestEnd& end = {}) {
    std::string local;
    std::string central;
    for (const TestMember& member : members) {
        const std::string start =
            U16(member.flags) + U16(member.method) + U16(member.time) + U16(member.date);
        const std::string sizes =
            U32(member.crc) +
            U32(member.packedSize.value_or(static_cast<std::uint32_t>(member.data.size()))) +
            U32(member.size);
        const std::string nameSize = U16(member.name.size());
        const std::string common = start + sizes + nameSize;
        central += U32(0x02014B50) + U8(20) + U8(member.host) + U16(20) + common +
                   U16(member.extra.size()) + U16(0) + U16(member.disk) + U16(0) +
                   U32(member.attributes) +
                   U32(member.offset.value_or(static_cast<std::uint32_t>(local.size()))) +
                   member.name + member.extra;
        local +=
            U32(member.localSignature) + U16(20) + start +
            (member.behind.empty() ? member.localSizes.value_or(sizes) : std::string(12, '\0')) +
            nameSize + U16(0) + member.name + member.data + member.behind;
    }
    const std::size_t count = members.size();
    std::string archive = local + central;
    if (end.wide)
        archive += U32(0x06064B50) + U64(44) + U16(45) + U16(45) + U32(0) + U32(0) + U64(count) +
                   U64(count) + U64(central.size()) + U64(end.offset.value_or(local.size())) +
                   U32(0x07064B50) + U32(0) + U64(local.size() + central.size()) + U32(1);
    const std::uint64_t saturated = end.wide ? ~0ULL : 0;
    return archive + U32(0x06054B50) + U16(end.disk) + U16(end.disk) + U16(count | saturated) +
           U16(end.count.value_or(static_cast<std::uint16_t>(count)) | saturated) +
           U32(end.size.value_or(static_cast<std::uint32_t>(central.size())) | saturated) +
           U32(end.offset.value_or(local.size()) | saturated) + U16(end.comment.size()) +
           end.comment;
}

} // namespace vesk::test
