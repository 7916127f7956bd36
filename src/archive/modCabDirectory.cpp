#include "archive/modCabDirectory.h"

#include "archive/clsByteReader.h"
#include "archive/modCabFailure.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vesk {

namespace {

/// Of a text in a cabinet, without its NUL. Longer ones than the 255 that are allowed are read, so
/// that one such name costs its member only.
constexpr std::size_t kLongestText = 4096;
constexpr std::size_t kHeaderSize = 36;
constexpr std::size_t kFolderSize = 8;
constexpr std::size_t kEntrySize = 16;

constexpr std::uint16_t kHasPrevious = 1;
constexpr std::uint16_t kHasNext = 2;
constexpr std::uint16_t kHasReserves = 4;

[[noreturn]] void Refuse(const std::string& reason) {
    ThrowCabFailure(kCabDamaged, reason);
}

/// Reads one header after the other from a place on.
class HeaderCursor {
public:
    HeaderCursor(clsByteWindow& cabinet, std::uint64_t at) : cabinet_(cabinet), at_(at) {}

    clsByteReader Take(std::size_t count) {
        const auto bytes = cabinet_.View(at_, count);
        if (bytes.size() < count)
            Refuse("its directory is cut short");
        at_ += count;
        return clsByteReader(bytes);
    }
    void Skip(std::size_t count) { at_ += count; }

    std::string TakeText() {
        const auto bytes = cabinet_.View(at_, kLongestText + 1);
        const auto end = std::ranges::find(bytes, std::byte{0});
        if (end == bytes.end())
            Refuse(bytes.size() <= kLongestText ? "its directory is cut short"
                                                : "a name in its directory has no end");
        const auto length = static_cast<std::size_t>(end - bytes.begin());
        at_ += length + 1;
        return {reinterpret_cast<const char*>(bytes.data()), length};
    }

private:
    clsByteWindow& cabinet_;
    std::uint64_t at_;
};

/// What stands in the first header and is needed for the rest.
struct Header {
    std::uint32_t entriesAt = 0;
    std::uint16_t folders = 0;
    std::uint16_t entries = 0;
    std::uint16_t flags = 0;
    std::uint8_t folderReserve = 0;
};

Header ReadHeader(clsByteReader reader) {
    constexpr std::uint32_t kSignature = 0x4643534D;
    if (reader.U32() != kSignature)
        Refuse("it is not a cabinet");
    Header header;
    // The size of the whole, too, is left aside: what is there counts, whatever was appended.
    reader.Skip(12);
    header.entriesAt = reader.U32();
    reader.Skip(4);
    const unsigned minor = reader.U8();
    const unsigned major = reader.U8();
    if (major != 1)
        Refuse("cabinets of format " + std::to_string(major) + "." + std::to_string(minor) +
               " are not supported");
    header.folders = reader.U16();
    header.entries = reader.U16();
    header.flags = reader.U16();
    if (header.folders == 0 && header.entries != 0)
        Refuse("it lists files but holds no data for them");
    return header;
}

/// Reads what may follow the first header: reserved areas, and the names of neighbours in a set.
void ReadVariablePart(HeaderCursor& cursor, Header& header, CabDirectory& directory) {
    if ((header.flags & kHasReserves) != 0) {
        clsByteReader sizes = cursor.Take(4);
        const std::uint16_t own = sizes.U16();
        header.folderReserve = sizes.U8();
        directory.blockReserve = sizes.U8();
        cursor.Skip(own);
    }
    for (const std::uint16_t neighbour : {kHasPrevious, kHasNext})
        if ((header.flags & neighbour) != 0) {
            cursor.TakeText(); // the file's name
            cursor.TakeText(); // the disk's
        }
    directory.continues = (header.flags & kHasNext) != 0;
}

void ReadFolders(HeaderCursor& cursor, const Header& header, std::vector<CabFolder>& folders) {
    for (unsigned i = 0; i < header.folders; ++i) {
        clsByteReader reader = cursor.Take(kFolderSize);
        CabFolder folder;
        folder.dataAt = reader.U32();
        folder.blocks = reader.U16();
        folder.packing = reader.U16();
        folders.push_back(folder);
        cursor.Skip(header.folderReserve);
    }
}

void ReadEntries(clsByteWindow& cabinet, const Header& header, std::vector<CabEntry>& entries) {
    if (header.entries != 0 && header.entriesAt >= cabinet.Size())
        Refuse("its list of files lies outside it");
    HeaderCursor cursor(cabinet, header.entriesAt);
    for (unsigned i = 0; i < header.entries; ++i) {
        clsByteReader reader = cursor.Take(kEntrySize);
        CabEntry entry;
        entry.size = reader.U32();
        entry.offset = reader.U32();
        entry.folder = reader.U16();
        entry.dosDate = reader.U16();
        entry.dosTime = reader.U16();
        entry.attributes = reader.U16();
        entry.name = cursor.TakeText();
        entries.push_back(std::move(entry));
    }
}

} // namespace

CabDirectory ReadCabDirectory(clsByteWindow& cabinet) {
    if (cabinet.Size() < kHeaderSize)
        Refuse("it is not a cabinet");
    HeaderCursor cursor(cabinet, 0);
    Header header = ReadHeader(cursor.Take(kHeaderSize));
    CabDirectory directory;
    ReadVariablePart(cursor, header, directory);
    ReadFolders(cursor, header, directory.folders);
    ReadEntries(cabinet, header, directory.entries);
    return directory;
}

} // namespace vesk
