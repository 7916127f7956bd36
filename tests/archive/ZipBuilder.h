#pragma once

#include "archive/clsCRC.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vesk::test {

/// Little-endian fields in a row.
class Fields {
public:
    Fields& U8(std::uint64_t value) { return Number(value, 1); }
    Fields& U16(std::uint64_t value) { return Number(value, 2); }
    Fields& U32(std::uint64_t value) { return Number(value, 4); }
    Fields& U64(std::uint64_t value) { return Number(value, 8); }
    Fields& Text(const std::string& text) {
        text_ += text;
        return *this;
    }
    operator std::string() const { return text_; } // NOLINT(google-explicit-constructor)

private:
    Fields& Number(std::uint64_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            text_ += static_cast<char>(value >> (8 * i) & 0xFF);
        return *this;
    }
    std::string text_;
};

/// One extra field.
inline std::string Extra(std::uint16_t tag, const std::string& data) {
    return Fields().U16(tag).U16(data.size()).Text(data);
}

inline std::uint32_t CrcOf(const std::string& text) {
    return static_cast<std::uint32_t>(clsCRC().CalculateString(text));
}

/// The text as one deflate block without compression.
inline std::string Deflated(const std::string& text) {
    return Fields().U8(1).U16(text.size()).U16(~text.size()).Text(text);
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
};

/// The fields of the end of an archive that a test may want to be wrong.
struct TestEnd {
    std::string comment;
    std::uint16_t disk = 0;
    std::optional<std::uint16_t> count;
    std::optional<std::uint32_t> directorySize, directoryOffset;
    bool wide = false; ///< All values in the zip64 records, the narrow ones saturated.
};

inline std::string MakeZip(const std::vector<TestMember>& members, const TestEnd& end = {}) {
    std::string local;
    std::string central;
    for (const TestMember& member : members) {
        const auto packedSize =
            member.packedSize.value_or(static_cast<std::uint32_t>(member.data.size()));
        const std::string common = Fields()
                                       .U16(member.flags)
                                       .U16(member.method)
                                       .U16(member.time)
                                       .U16(member.date)
                                       .U32(member.crc)
                                       .U32(packedSize)
                                       .U32(member.size)
                                       .U16(member.name.size());
        central += Fields()
                       .U32(0x02014B50)
                       .U8(20)
                       .U8(member.host)
                       .U16(20)
                       .Text(common)
                       .U16(member.extra.size())
                       .U16(0)
                       .U16(member.disk)
                       .U16(0)
                       .U32(member.attributes)
                       .U32(member.offset.value_or(static_cast<std::uint32_t>(local.size())))
                       .Text(member.name)
                       .Text(member.extra);
        local += Fields()
                     .U32(member.localSignature)
                     .U16(20)
                     .Text(common)
                     .U16(0)
                     .Text(member.name)
                     .Text(member.data);
    }
    Fields archive;
    archive.Text(local).Text(central);
    if (end.wide) {
        const std::uint64_t at = local.size() + central.size();
        archive.U32(0x06064B50)
            .U64(44)
            .U16(45)
            .U16(45)
            .U32(0)
            .U32(0)
            .U64(members.size())
            .U64(members.size())
            .U64(central.size())
            .U64(local.size());
        archive.U32(0x07064B50).U32(0).U64(at).U32(1);
    }
    const auto narrow = [&](std::uint64_t value, std::uint64_t saturated) {
        return end.wide ? saturated : value;
    };
    archive.U32(0x06054B50)
        .U16(end.disk)
        .U16(end.disk)
        .U16(narrow(members.size(), 0xFFFF))
        .U16(end.count.value_or(static_cast<std::uint16_t>(narrow(members.size(), 0xFFFF))))
        .U32(end.directorySize.value_or(
            static_cast<std::uint32_t>(narrow(central.size(), 0xFFFFFFFF))))
        .U32(end.directoryOffset.value_or(
            static_cast<std::uint32_t>(narrow(local.size(), 0xFFFFFFFF))))
        .U16(end.comment.size())
        .Text(end.comment);
    return archive;
}

inline std::span<const std::byte> BytesOf(const std::string& text) {
    return std::as_bytes(std::span(text));
}

} // namespace vesk::test
