#include "archive/modCabJudge.h"

#include "archive/clsByteReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <string>
#include <vector>

namespace vesk {

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::uint64_t kBlockHeaderSize = 8;

/// What one block may take in the file: a method may make it larger than it was.
constexpr std::size_t kLargestPacked = kCabBlockSize + 6144;

constexpr const char* kCutShort = "its data is cut short";
constexpr const char* kDamaged = "its data is damaged";
constexpr const char* kGoesOn = "it continues in another cabinet";

/// The format's checksum: the 32-bit words joined by exclusive or, the last bytes in the other
/// order.
std::uint32_t Checksum(Bytes bytes, std::uint32_t seed) {
    const auto at = [bytes](std::size_t i) { return std::to_integer<std::uint32_t>(bytes[i]); };
    std::uint32_t sum = seed;
    std::size_t i = 0;
    for (; i + 4 <= bytes.size(); i += 4)
        sum ^= at(i) | at(i + 1) << 8 | at(i + 2) << 16 | at(i + 3) << 24;
    std::uint32_t tail = 0;
    for (; i < bytes.size(); ++i)
        tail = tail << 8 | at(i);
    return sum ^ tail;
}

/// One folder's chain of blocks.
class ChainWalk {
public:
    ChainWalk(clsByteWindow& cabinet, const CabDirectory& directory, CabFolder& folder,
              std::uint64_t limit)
        : cabinet_(cabinet), directory_(directory), folder_(folder), limit_(limit) {}

    void Run(const std::function<void()>& tick) {
        while (folder_.goodBlocks < folder_.blocks) {
            folder_.fault = TakeBlock();
            if (!folder_.fault.empty())
                return;
            ++folder_.goodBlocks;
            tick();
        }
    }

private:
    /// @return what is wrong with the next block; empty when it was counted in
    std::string TakeBlock() {
        const std::uint64_t at = folder_.dataAt + folder_.goodPacked;
        const std::size_t headSize = kBlockHeaderSize + directory_.blockReserve;
        const Bytes head = cabinet_.View(at, headSize);
        clsByteReader reader(head);
        const std::uint32_t checksum = reader.U32();
        const std::size_t packed = reader.U16();
        const std::size_t unpacked = reader.U16();
        if (head.size() < headSize)
            return kCutShort;
        if (unpacked == 0) // the other part of the block stands in the next cabinet
            return directory_.continues ? kGoesOn : kDamaged;
        const bool stored = (folder_.packing & 0xF) == 0;
        if (packed == 0 || packed > kLargestPacked || unpacked > kCabBlockSize ||
            (stored && packed != unpacked))
            return kDamaged;
        if (at + headSize + packed > limit_)
            return limit_ == cabinet_.Size() ? kCutShort : kDamaged;
        if (!IsIntact(at, headSize, packed, checksum))
            return kDamaged;
        folder_.goodPacked += headSize + packed;
        folder_.goodUnpacked += unpacked;
        return {};
    }

    bool IsIntact(std::uint64_t at, std::size_t headSize, std::size_t packed,
                  std::uint32_t checksum) {
        const Bytes block = cabinet_.View(at, headSize + packed);
        if (checksum == 0) // the archiver did not compute it
            return true;
        const std::uint32_t ofData = Checksum(block.subspan(headSize), 0);
        // Archivers do not agree on whether the reserved area counts.
        return checksum == Checksum(block.subspan(4, 4), ofData) ||
               checksum == Checksum(block.subspan(4, headSize - 4), ofData);
    }

    clsByteWindow& cabinet_;
    const CabDirectory& directory_;
    CabFolder& folder_;
    std::uint64_t limit_; ///< Where the folder's data ends at the latest.
};

std::string PackingFault(std::uint16_t packing) {
    const unsigned method = packing & 0xFU;
    const unsigned level = packing >> 4 & 0xFU;
    const unsigned window = packing >> 8 & 0x1FU; // its size as a power of two
    switch (method) {
    case 0:
    case 1:
        return {};
    case 2:
        if (level < 1 || level > 7 || window < 10 || window > 21)
            return "its settings for Quantum compression are impossible";
        return {};
    case 3:
        if (window < 15 || window > 21)
            return "its settings for LZX compression are impossible";
        return {};
    default:
        return "compression method " + std::to_string(method) + " is not supported";
    }
}

std::string RefusalByFolder(const CabEntry& entry, const CabDirectory& directory) {
    switch (entry.folder) {
    case CabEntry::kFromPrevious:
    case CabEntry::kFromPreviousToNext:
        return "it begins in another cabinet";
    case CabEntry::kToNext:
        return kGoesOn;
    default:
        break;
    }
    if (entry.folder >= directory.folders.size())
        return "the cabinet has no data for it";
    if (entry.size == 0) // needs no data, so none can be in its way
        return {};
    const CabFolder& folder = directory.folders[entry.folder];
    if (std::string fault = PackingFault(folder.packing); !fault.empty())
        return fault;
    if (std::uint64_t{entry.offset} + entry.size <= folder.goodUnpacked)
        return {};
    return folder.fault.empty() ? "the cabinet does not have enough data for it" : folder.fault;
}

/// Refuses what shares bytes with a member before it, unless it shares all of them. How much a
/// small cabinet can become in that way has a limit.
void RefuseOverlaps(CabDirectory& directory, const std::vector<std::size_t>& order) {
    constexpr std::uint64_t kMostShared = std::uint64_t{256} << 20;
    std::uint16_t folder = 0;
    std::uint64_t used = 0;
    std::uint64_t shared = 0;
    std::size_t first = 0; // of those that have the same data
    for (const std::size_t index : order) {
        CabEntry& entry = directory.entries[index];
        if (entry.folder != folder)
            used = 0;
        folder = entry.folder;
        if (!entry.refusal.empty() || entry.size == 0)
            continue;
        const std::uint64_t end = std::uint64_t{entry.offset} + entry.size;
        CabEntry& before = directory.entries[first];
        if (entry.offset >= used) {
            used = end;
            first = index;
        } else if (entry.offset == before.offset && end == used &&
                   shared + entry.size <= kMostShared) {
            shared += entry.size;
            entry.twin = first;
            before.hasTwin = true;
        } else {
            entry.refusal = "it overlaps another member";
        }
    }
}

} // namespace

void JudgeCabData(clsByteWindow& cabinet, CabDirectory& directory,
                  const std::function<void()>& tick) {
    std::vector<CabFolder*> inFile;
    for (CabFolder& folder : directory.folders)
        if (folder.blocks != 0)
            inFile.push_back(&folder);
    std::ranges::stable_sort(inFile, {}, &CabFolder::dataAt);
    for (std::size_t i = 0; i < inFile.size(); ++i) {
        CabFolder& folder = *inFile[i];
        if (i != 0 && folder.dataAt == inFile[i - 1]->dataAt) {
            folder.fault = "its data belongs to other members";
            continue;
        }
        std::uint64_t limit = cabinet.Size();
        for (std::size_t next = i + 1; next < inFile.size(); ++next)
            if (inFile[next]->dataAt != folder.dataAt) {
                limit = std::min<std::uint64_t>(limit, inFile[next]->dataAt);
                break;
            }
        ChainWalk(cabinet, directory, folder, limit).Run(tick);
    }
}

std::vector<std::size_t> JudgeCabEntries(CabDirectory& directory) {
    for (CabEntry& entry : directory.entries)
        if (entry.refusal.empty())
            entry.refusal = RefusalByFolder(entry, directory);
    std::vector<std::size_t> order(directory.entries.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&](std::size_t index) {
        const CabEntry& entry = directory.entries[index];
        return std::uint64_t{entry.folder} << 32 | entry.offset;
    });
    RefuseOverlaps(directory, order);
    return order;
}

} // namespace vesk
