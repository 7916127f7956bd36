#pragma once

#include "archive/clsCRC.h"
#include "base/modText.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vesk::test {

/// A little-endian number; fields are joined with "+".
template <int kBytes>
std::string Number(std::uint64_t value) {
    std::string text;
    for (int i = 0; i < kBytes; ++i)
        text += static_cast<char>(value >> (8 * i) & 0xFF);
    return text;
}
constexpr auto U8 = Number<1>;
constexpr auto U16 = Number<2>;
constexpr auto U32 = Number<4>;
constexpr auto U64 = Number<8>;

using Fields = std::map<std::string, std::uint64_t>; ///< Values by the names of a record's fields.

/// @param layout "name:bytes name:bytes ..."; a field without a value is 0
inline std::string Record(const std::string& layout, const Fields& values) {
    std::string record;
    for (const std::string& field : Split(layout, ' ')) {
        const auto value = values.find(field.substr(0, field.size() - 2));
        const auto bytes = static_cast<std::size_t>(field.back() - '0');
        record += U64(value == values.end() ? 0 : value->second).substr(0, bytes);
    }
    return record;
}

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

/// A member; a test changes the field it is about.
struct TestMember {
    std::string name = {};
    std::string data = {};   ///< As it lies in the archive.
    Fields fields = {};      ///< Of its record in the directory, and of the header at its data.
    std::string extra = {};  ///< In the directory.
    std::string behind = {}; ///< Descriptor behind the data, instead of sizes in front of it.

    static TestMember Stored(const std::string& name, const std::string& text) {
        return {
            .name = name, .data = text, .fields = {{"crc", CrcOf(text)}, {"size", text.size()}}};
    }
    static TestMember Packed(const std::string& name, const std::string& text) {
        TestMember member = Stored(name, text);
        member.data = Deflated(text);
        member.fields["method"] = 8;
        return member;
    }
    /// "secret text" under the password "pass", as an archiver wrote it: encrypted and streamed,
    /// so that the time checks the password.
    static TestMember Encrypted(const std::string& name) {
        TestMember member = Stored(name, "secret text");
        member.data = std::string("\x40\x9D\x13\x30\x49\x22\x68\x1C\x7B\x0D\x3E\xA7\x2A\xF1\xFA"
                                  "\x58\x2C\x95\xD5\x3F\x6E\xC7\xAE",
                                  23);
        member.fields.merge(Fields{{"flags", 9}, {"time", 0x4379}});
        return member;
    }
    /// As a streaming archiver writes it: no sizes in front of the data, but behind it.
    static TestMember Streamed(TestMember member) {
        member.fields["flags"] = 8;
        member.behind = U32(0x08074B50) + U32(member.fields["crc"]) + U32(member.data.size()) +
                        U32(member.fields["size"]);
        return member;
    }
};

/// @param end fields of the record at the end; "wide": they are in the zip64 records
inline std::string MakeZip(const std::vector<TestMember>& members, Fields end = {},
                           const std::string& comment = "") {
    const std::string start = "needed:2 flags:2 method:2 time:2 date:2 ";
    std::string local, central;
    for (const TestMember& member : members) {
        Fields fields = member.fields;
        fields.merge(Fields{{"mark", 0x02014B50},
                            {"needed", 20},
                            {"date", 0x5A21}, // 2025-01-01
                            {"time", 0x6000}, // 12:00:00
                            {"packed", member.data.size()},
                            {"nameSize", member.name.size()},
                            {"extraSize", member.extra.size()},
                            {"offset", local.size()},
                            {"local.mark", 0x04034B50}});
        if (member.behind.empty())
            fields.merge(Fields{{"local.crc", fields["crc"]},
                                {"local.packed", fields["packed"]},
                                {"local.size", fields["size"]}});
        central += Record("mark:4 made:1 host:1 " + start +
                              "crc:4 packed:4 size:4 nameSize:2 extraSize:2 comment:2 disk:2 "
                              "internal:2 attributes:4 offset:4",
                          fields) +
                   member.name + member.extra;
        local += Record("local.mark:4 " + start +
                            "local.crc:4 local.packed:4 local.size:4 nameSize:2 local.extra:2",
                        fields) +
                 member.name + member.data + member.behind;
    }
    end.merge(Fields{{"mark", 0x06054B50},
                     {"here", members.size()},
                     {"count", members.size()},
                     {"size", central.size()},
                     {"offset", local.size()},
                     {"comment", comment.size()}});
    std::string archive = local + central;
    if (end["wide"] != 0) {
        archive += U32(0x06064B50) + U64(44) +
                   Record("made:2 needed:2 disk:4 first:4 here:8 count:8 size:8 offset:8", end) +
                   U32(0x07064B50) + U32(0) + U64(archive.size()) + U32(1);
        end["here"] = end["count"] = end["size"] = end["offset"] = ~0ULL;
    }
    return archive + Record("mark:4 disk:2 first:2 here:2 count:2 size:4 offset:4 comment:2", end) +
           comment;
}

} // namespace vesk::test
