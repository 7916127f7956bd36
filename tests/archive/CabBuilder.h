#pragma once

#include "archive/ZipBuilder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vesk::test {

/// One data block of a cabinet, right unless stated otherwise.
struct TestBlock {
    std::string data; ///< As it stands in the file.
    std::optional<std::uint32_t> checksum = std::nullopt;
    std::optional<std::uint16_t> packed = std::nullopt;
    std::optional<std::uint16_t> unpacked = std::nullopt;

    void SetSizes(std::uint16_t size) { packed = unpacked = size; }
};

struct TestFolderData {
    std::vector<TestBlock> blocks = {};
    std::uint16_t packing = 0; ///< Not compressed.
    std::optional<std::uint32_t> dataAt = std::nullopt;
    std::optional<std::uint16_t> blockCount = std::nullopt;
};

struct TestCabMember {
    std::string name;
    std::uint32_t size = 0;
    std::uint32_t offset = 0;
    std::uint16_t folder = 0;
    std::uint16_t attributes = 0x20;
    std::uint16_t date = (2024 - 1980) << 9 | 2 << 5 | 29;
    std::uint16_t time = 13 << 11 | 37 << 5 | 42 / 2;
};

/// Words of four bytes, the lowest first, but the highest first in what is left at the end.
inline std::uint32_t CabChecksum(const std::string& bytes, std::uint32_t sum) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t place = i < bytes.size() / 4 * 4 ? i % 4 : bytes.size() - 1 - i;
        sum ^= std::uint32_t{static_cast<std::uint8_t>(bytes[i])} << 8 * place;
    }
    return sum;
}

inline const std::string kFirst =
    "the first block, the first block, the first block, the first block, ";
inline const std::string kSecond = "and the first block, the first block, the last";

/// The two texts in MSZIP; the second refers to the first.
inline const std::string kFirstPacked("CK\x2B\xC9\x48\x55\x48\xCB\x2C\x2A\x2E\x51\x48\xCA\xC9"
                                      "\x4F\xCE\xD6\x51\x28\x21\x5D\x00\x00",
                                      24);
inline const std::string kSecondPacked("CK\x4B\xCC\x4B\x21\x52\x5B\x4E\x62\x71\x09\x00", 13);

/// A cabinet as the test wants it.
struct TestCab {
    std::vector<TestFolderData> folders;
    std::vector<TestCabMember> members;
    std::string signature = "MSCF";
    std::string version = "\x03\x01";
    std::optional<std::uint16_t> folderCount, memberCount;
    std::optional<std::uint32_t> membersAt;
    std::string next; ///< Name of a following cabinet.
    std::optional<std::string> headerReserve;
    std::string folderReserve, blockReserve;

    /// One member after the other, all in one folder, not compressed.
    static TestCab Of(const std::vector<std::pair<std::string, std::string>>& files) {
        TestCab cab;
        std::string data;
        for (const auto& [name, content] : files) {
            cab.members.push_back({.name = name,
                                   .size = static_cast<std::uint32_t>(content.size()),
                                   .offset = static_cast<std::uint32_t>(data.size())});
            data += content;
        }
        TestFolderData& folder = cab.folders.emplace_back();
        for (std::size_t at = 0; at < data.size(); at += 32768)
            folder.blocks.push_back({data.substr(at, 32768)});
        return cab;
    }

    /// Three members over two packed blocks; the second one lies across both.
    static TestCab Mszip() {
        TestCab cab;
        cab.folders.push_back({.packing = 1});
        cab.folders[0].blocks = {{.data = kFirstPacked, .unpacked = 68},
                                 {.data = kSecondPacked, .unpacked = 46}};
        cab.members = {{.name = "a", .size = 10},
                       {.name = "b", .size = 100, .offset = 10},
                       {.name = "c", .size = 2, .offset = 112}};
        return cab;
    }

    /// Adds a member in a folder of its own, not compressed.
    TestCab& Add(const std::string& name, const std::string& text) {
        const TestCab alone = Of({{name, text}});
        members.push_back(alone.members[0]);
        members.back().folder = static_cast<std::uint16_t>(folders.size());
        folders.push_back(alone.folders[0]);
        return *this;
    }
    /// The same with data that its checksum speaks against.
    TestCab& AddDamaged(const std::string& name, const std::string& text) {
        Add(name, text).folders.back().blocks.back().checksum = 0x12345678;
        return *this;
    }

    [[nodiscard]] std::string Bytes() const {
        std::string variable;
        if (headerReserve)
            variable += U16(headerReserve->size()) + U8(folderReserve.size()) +
                        U8(blockReserve.size()) + *headerReserve;
        if (!next.empty())
            variable += next + '\0' + "disk 2" + '\0';
        std::string list;
        for (const TestCabMember& member : members)
            list += U32(member.size) + U32(member.offset) + U16(member.folder) + U16(member.date) +
                    U16(member.time) + U16(member.attributes) + member.name + '\0';
        const std::size_t listAt =
            36 + variable.size() + folders.size() * (8 + folderReserve.size());
        std::string heads;
        std::string data;
        for (const TestFolderData& folder : folders) {
            heads += U32(Or(folder.dataAt, listAt + list.size() + data.size())) +
                     U16(Or(folder.blockCount, folder.blocks.size())) + U16(folder.packing) +
                     folderReserve;
            for (const TestBlock& block : folder.blocks)
                data += BlockBytes(block);
        }
        return signature + U32(0) + U32(listAt + list.size() + data.size()) + U32(0) +
               U32(Or(membersAt, listAt)) + U32(0) + version +
               U16(Or(folderCount, folders.size())) + U16(Or(memberCount, members.size())) +
               U16((next.empty() ? 0U : 2U) | (headerReserve ? 4U : 0U)) + U32(0) + variable +
               heads + list + data;
    }

private:
    /// What a test wants a field to be, or else what is right.
    static std::uint64_t Or(const auto& wanted, std::uint64_t right) {
        return wanted ? *wanted : right;
    }

    [[nodiscard]] std::string BlockBytes(const TestBlock& block) const {
        const std::string sizes =
            U16(Or(block.packed, block.data.size())) + U16(Or(block.unpacked, block.data.size()));
        return U32(Or(block.checksum, CabChecksum(sizes, CabChecksum(block.data, 0)))) + sizes +
               blockReserve + block.data;
    }
};

} // namespace vesk::test
