#include "archive/modCabUnpack.h"

#include "archive/clsByteReader.h"
#include "archive/modCabJudge.h"

#include <libdeflate.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

namespace vesk {

namespace {

using Bytes = std::span<const std::byte>;

constexpr unsigned kMszip = 1;

/// One MSZIP block after the other. Each is a deflate stream of its own that may refer to the
/// 32,768 bytes before it.
class MszipBlocks {
public:
    MszipBlocks() : decompressor_(libdeflate_alloc_decompressor()) {
        if (!decompressor_)
            throw std::bad_alloc();
    }

    /// @return the block's bytes, until the next call; nothing when it is damaged
    Bytes Unpack(Bytes packed, std::size_t size) {
        constexpr std::size_t kMark = 2;
        if (packed.size() < kMark || packed[0] != std::byte{'C'} || packed[1] != std::byte{'K'})
            return {};
        // The bytes before go ahead of the stream as a block that is not compressed: so they are
        // where references into them look for them.
        const std::size_t before = std::min(unpacked_.size(), kCabBlockSize);
        stream_.clear();
        if (before != 0)
            AppendStored(std::span(unpacked_).last(before));
        stream_.insert(stream_.end(), packed.begin() + kMark, packed.end());
        next_.resize(before + size);
        if (libdeflate_deflate_decompress(decompressor_.get(), stream_.data(), stream_.size(),
                                          next_.data(), next_.size(),
                                          nullptr) != LIBDEFLATE_SUCCESS)
            return {};
        unpacked_.swap(next_);
        return std::span(unpacked_).last(size);
    }

private:
    struct Free {
        void operator()(libdeflate_decompressor* pointer) const {
            libdeflate_free_decompressor(pointer);
        }
    };

    void AppendStored(Bytes bytes) {
        const auto append = [this](std::size_t value) {
            stream_.push_back(static_cast<std::byte>(value & 0xFF));
            stream_.push_back(static_cast<std::byte>(value >> 8 & 0xFF));
        };
        stream_.push_back(std::byte{0}); // not the last block
        append(bytes.size());
        append(~bytes.size());
        stream_.insert(stream_.end(), bytes.begin(), bytes.end());
    }

    std::unique_ptr<libdeflate_decompressor, Free> decompressor_;
    std::vector<std::byte> stream_;
    std::vector<std::byte> unpacked_; ///< The last block, and what stood before it.
    std::vector<std::byte> next_;
};

/// Cuts the folder's bytes into members.
class Cutter {
public:
    Cutter(const CabDirectory& directory, std::span<const std::size_t> entries, CabSink& sink)
        : directory_(directory), entries_(entries), sink_(sink) {}

    [[nodiscard]] bool IsDone() const { return place_ == entries_.size(); }

    /// @param at position of the bytes in the folder's unpacked data
    void Take(Bytes bytes, std::uint64_t at) {
        const std::uint64_t end = at + bytes.size();
        while (!IsDone() && Entry().offset < end) {
            const std::uint64_t from = std::max<std::uint64_t>(Entry().offset, at);
            const std::uint64_t memberEnd = std::uint64_t{Entry().offset} + Entry().size;
            const std::uint64_t to = std::min(memberEnd, end);
            if (from == Entry().offset)
                wanted_ = sink_.Begin(place_);
            if (wanted_)
                sink_.Write(bytes.subspan(static_cast<std::size_t>(from - at),
                                          static_cast<std::size_t>(to - from)));
            if (to < memberEnd)
                return;
            if (wanted_)
                sink_.End();
            ++place_;
        }
    }

private:
    [[nodiscard]] const CabEntry& Entry() const { return directory_.entries[entries_[place_]]; }

    const CabDirectory& directory_;
    std::span<const std::size_t> entries_;
    CabSink& sink_;
    std::size_t place_ = 0;
    bool wanted_ = false;
};

} // namespace

bool IsUnpackedHere(const CabFolder& folder) {
    return (folder.packing & 0xFU) <= kMszip;
}

void UnpackCabFolder(clsByteWindow& cabinet, const CabDirectory& directory, const CabFolder& folder,
                     std::span<const std::size_t> entries, CabSink& sink) {
    const bool packedData = (folder.packing & 0xFU) == kMszip;
    const std::size_t headSize = std::size_t{8} + directory.blockReserve;
    MszipBlocks mszip;
    Cutter cutter(directory, entries, sink);
    std::uint64_t from = folder.dataAt;
    std::uint64_t at = 0;
    for (unsigned block = 0; block < folder.goodBlocks && !cutter.IsDone(); ++block) {
        clsByteReader head(cabinet.View(from, headSize));
        head.Skip(4);
        const std::size_t packed = head.U16();
        const std::size_t size = head.U16();
        Bytes bytes = cabinet.View(from + headSize, packed);
        if (packedData)
            bytes = mszip.Unpack(bytes, size);
        if (bytes.size() != size || bytes.empty())
            return;
        cutter.Take(bytes, at);
        from += headSize + packed;
        at += size;
    }
}

} // namespace vesk
