#include "archive/clsReusedBuffer.h"

#include <bit>
#include <limits>
#include <new>

namespace vesk {

std::span<std::byte> clsReusedBuffer::Of(std::uint64_t size) {
    if (size > std::numeric_limits<std::size_t>::max() / 4)
        throw std::bad_alloc();
    const auto wanted = static_cast<std::size_t>(size);
    if (wanted > capacity_) {
        bytes_.reset(); // never both blocks at a time
        capacity_ = 0;
        const std::size_t rounded = std::bit_ceil(wanted);
        bytes_ = std::make_unique_for_overwrite<std::byte[]>(rounded);
        capacity_ = rounded;
    }
    return {bytes_.get(), wanted};
}

} // namespace vesk
