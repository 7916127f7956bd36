#pragma once

#include "archive/ZipBuilder.h"

namespace vesk::test {

/// Words of four bytes, the lowest first, but the highest first in what is left at the end.
inline std::uint32_t CabChecksum(const std::string& bytes, std::uint32_t sum) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t place = i < bytes.size() / 4 * 4 ? i % 4 : bytes.size() - 1 - i;
        sum ^= std::uint32_t{static_cast<std::uint8_t>(bytes[i])} << 8 * place;
    }
    return sum;
}

/// A cabinet as the test wants it.
struct TestCab {
    std::vector<std::vector<std::string>>
        folders;                      ///< Their data blocks, as they stand in the file.
    std::vector<std::string> members; ///< Their names.
    /// Those of members, and what is not as it should be: "cab.version", "folder0.packing",
    /// "block0.1.checksum". "cab.next" is the length of the next cabinet's name; "reserve.cab",
    /// "reserve.folder" and "reserve.block" are the lengths of what is reserved.
    Fields fields;

    /// Adds a member, not compressed: in a folder of its own, or in the last one.
    TestCab& Add(const std::string& name, const std::string& text, bool inLastFolder = false) {
        if (!inLastFolder || folders.empty())
            folders.emplace_back();
        std::vector<std::string>& blocks = folders.back();
        std::size_t offset = 0;
        for (const std::string& block : blocks)
            offset += block.size();
        const std::string place = "member" + std::to_string(members.size());
        fields.merge(Fields{{place + ".size", text.size()},
                            {place + ".offset", offset},
                            {place + ".folder", folders.size() - 1}});
        members.push_back(name);
        for (std::size_t at = 0; at < text.size(); at += 32768)
            blocks.push_back(text.substr(at, 32768));
        return *this;
    }

    [[nodiscard]] std::string Bytes() const {
        const bool reserves = fields.lower_bound("reserve.") != fields.end();
        const std::string behindFolder = Filler("reserve.folder");
        std::string variable;
        if (reserves)
            variable = Part("reserve", "cab:2 folder:1 block:1", {}) + Filler("reserve.cab");
        if (const std::string next = Filler("cab.next"); !next.empty())
            variable += next + '\0' + "disk 2" + '\0';
        std::string list;
        for (std::size_t i = 0; i < members.size(); ++i)
            list += Part("member" + std::to_string(i),
                         "size:4 offset:4 folder:2 date:2 time:2 attributes:2",
                         {{"date", (2024 - 1980) << 9 | 2 << 5 | 29},
                          {"time", 13 << 11 | 37 << 5 | 42 / 2},
                          {"attributes", 0x20}}) +
                    members[i] + '\0';
        const std::size_t listAt =
            36 + variable.size() + folders.size() * (8 + behindFolder.size());
        std::string heads, data;
        for (std::size_t i = 0; i < folders.size(); ++i) {
            heads +=
                Part("folder" + std::to_string(i), "at:4 blocks:2 packing:2",
                     {{"at", listAt + list.size() + data.size()}, {"blocks", folders[i].size()}}) +
                behindFolder;
            for (std::size_t number = 0; number < folders[i].size(); ++number)
                data += Block("block" + std::to_string(i) + "." + std::to_string(number),
                              folders[i][number]);
        }
        return Part("cab",
                    "mark:4 zero:4 size:4 zero:4 membersAt:4 zero:4 version:2 folders:2 members:2 "
                    "flags:2 zero:4",
                    {{"mark", 0x4643534D},
                     {"size", listAt + list.size() + data.size()},
                     {"membersAt", listAt},
                     {"version", 0x103},
                     {"folders", folders.size()},
                     {"members", members.size()},
                     {"flags", (ValueOf("cab.next", 0) != 0 ? 2 : 0) | (reserves ? 4 : 0)}}) +
               variable + heads + list + data;
    }

private:
    /// As many letters as a field says.
    [[nodiscard]] std::string Filler(const std::string& field) const {
        std::string filler(static_cast<std::size_t>(ValueOf(field, 0)), 'r');
        return filler;
    }
    [[nodiscard]] std::uint64_t ValueOf(const std::string& field, std::uint64_t right) const {
        const auto wanted = fields.find(field);
        return wanted != fields.end() ? wanted->second : right;
    }
    /// A record of which fields may be wanted otherwise than they should be.
    [[nodiscard]] std::string Part(const std::string& place, const std::string& layout,
                                   Fields values) const {
        for (auto wanted = fields.lower_bound(place + ".");
             wanted != fields.end() && wanted->first.starts_with(place + "."); ++wanted)
            values[wanted->first.substr(place.size() + 1)] = wanted->second;
        return Record(layout, values);
    }
    [[nodiscard]] std::string Block(const std::string& place, const std::string& data) const {
        const std::string sizes = Part(place, "packed:2 unpacked:2",
                                       {{"packed", data.size()}, {"unpacked", data.size()}});
        return Part(place, "checksum:4", {{"checksum", CabChecksum(sizes, CabChecksum(data, 0))}}) +
               sizes + Filler("reserve.block") + data;
    }
};

} // namespace vesk::test
