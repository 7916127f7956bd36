#include "archive/modCabImage.h"

#include <cstddef>
#include <cstdint>

namespace vesk {

namespace {

void Append(std::string& bytes, std::uint64_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

std::string FileRecords(const CabDirectory& directory, std::span<const std::size_t> entries) {
    std::string list;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const CabEntry& entry = directory.entries[entries[i]];
        Append(list, entry.size, 4);
        Append(list, entry.offset, 4);
        Append(list, 0, 2); // the only folder
        Append(list, 0, 6); // date, time, attributes: whoever reads the image knows them
        list += std::to_string(i) + '\0';
    }
    return list;
}

} // namespace

std::string CabFolderImage(const CabDirectory& directory, const CabFolder& folder,
                           std::span<const std::size_t> entries) {
    constexpr std::size_t kHeadersSize = 36 + 4 + 8;
    constexpr std::uint16_t kHasReserves = 4;
    const std::string list = FileRecords(directory, entries);
    const std::uint64_t dataAt = kHeadersSize + list.size();
    std::string image = "MSCF";
    Append(image, 0, 4);
    Append(image, dataAt + folder.goodPacked, 4);
    Append(image, 0, 4);
    Append(image, kHeadersSize, 4); // where the list stands
    Append(image, 0, 4);
    Append(image, 0x0103, 2); // format 1.3
    Append(image, 1, 2);
    Append(image, entries.size(), 2);
    Append(image, kHasReserves, 2);
    Append(image, 0, 4); // no set of cabinets
    Append(image, 0, 3); // nothing reserved in the header and at the folder
    Append(image, directory.blockReserve, 1);
    Append(image, dataAt, 4);
    Append(image, folder.goodBlocks, 2);
    Append(image, folder.packing, 2);
    return image + list;
}

} // namespace vesk
