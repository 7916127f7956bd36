#pragma once

#include "archive/MemorySource.h"
#include "archive/ZipBuilder.h"

#include <cstring>
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

inline std::uint32_t CabChecksum(const std::string& bytes, std::uint32_t sum) {
    std::size_t i = 0;
    for (; i + 4 <= bytes.size(); i += 4) {
        std::uint32_t word = 0;
        std::memcpy(&word, bytes.data() + i, 4);
        sum ^= word;
    }
    std::uint32_t tail = 0;
    for (; i < bytes.size(); ++i)
        tail = tail << 8 | static_cast<std::uint8_t>(bytes[i]);
    return sum ^ tail;
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

    /// One member after the other, all in one folder of one block.
    static TestCab Of(const std::vector<std::pair<std::string, std::string>>& files) {
        TestCab cab;
        cab.folders.resize(1);
        std::string data;
        for (const auto& [name, content] : files) {
            cab.members.push_back({.name = name,
                                   .size = static_cast<std::uint32_t>(content.size()),
                                   .offset = static_cast<std::uint32_t>(data.size())});
            data += content;
        }
        cab.folders[0].blocks.push_back({data});
        return cab;
    }

    /// Three members over two packed blocks; the second one lies across both.
    static TestCab Mszip() {
        TestCab cab;
        cab.folders.resize(1);
        cab.folders[0].packing = 1;
        const auto unpacked = [](const std::string& text) {
            return static_cast<std::uint16_t>(text.size());
        };
        cab.folders[0].blocks = {{.data = kFirstPacked, .unpacked = unpacked(kFirst)},
                                 {.data = kSecondPacked, .unpacked = unpacked(kSecond)}};
        cab.members = {{.name = "a", .size = 10},
                       {.name = "b", .size = 100, .offset = 10},
                       {.name = "c", .size = 2, .offset = 112}};
        return cab;
    }

    [[nodiscard]] std::string Bytes() const {
        const std::string variable = VariablePart();
        const std::string list = MemberList();
        const std::size_t listAt =
            36 + variable.size() + folders.size() * (8 + folderReserve.size());
        std::string heads;
        std::string data;
        for (const TestFolderData& folder : folders) {
            heads += U32(folder.dataAt.value_or(
                static_cast<std::uint32_t>(listAt + list.size() + data.size())));
            heads +=
                U16(folder.blockCount.value_or(static_cast<std::uint16_t>(folder.blocks.size()))) +
                U16(folder.packing) + folderReserve;
            for (const TestBlock& block : folder.blocks)
                data += BlockBytes(block);
        }
        const std::size_t size = listAt + list.size() + data.size();
        return signature + U32(0) + U32(size) + U32(0) +
               U32(membersAt.value_or(static_cast<std::uint32_t>(listAt))) + U32(0) + version +
               U16(folderCount.value_or(static_cast<std::uint16_t>(folders.size()))) +
               U16(memberCount.value_or(static_cast<std::uint16_t>(members.size()))) +
               U16((next.empty() ? 0U : 2U) | (headerReserve ? 4U : 0U)) + U16(0) + U16(0) +
               variable + heads + list + data;
    }

private:
    [[nodiscard]] std::string VariablePart() const {
        std::string part;
        if (headerReserve)
            part += U16(headerReserve->size()) + U8(folderReserve.size()) +
                    U8(blockReserve.size()) + *headerReserve;
        if (!next.empty())
            part += next + '\0' + "disk 2" + '\0';
        return part;
    }

    [[nodiscard]] std::string MemberList() const {
        std::string list;
        for (const TestCabMember& member : members)
            list += U32(member.size) + U32(member.offset) + U16(member.folder) + U16(member.date) +
                    U16(member.time) + U16(member.attributes) + member.name + '\0';
        return list;
    }

    [[nodiscard]] std::string BlockBytes(const TestBlock& block) const {
        const auto length = static_cast<std::uint16_t>(block.data.size());
        const std::string sizes =
            U16(block.packed.value_or(length)) + U16(block.unpacked.value_or(length));
        const std::uint32_t sum = CabChecksum(sizes, CabChecksum(block.data, 0));
        return U32(block.checksum.value_or(sum)) + sizes + blockReserve + block.data;
    }
};

} // namespace vesk::test
