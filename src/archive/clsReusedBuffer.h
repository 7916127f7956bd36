#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace vesk {

/// Memory that is used again and again and grows as needed; never cleared.
class clsReusedBuffer {
public:
    /// @return `size` bytes of undefined content, valid until the next call.
    /// @throws std::bad_alloc
    std::span<std::byte> Of(std::uint64_t size);

private:
    std::unique_ptr<std::byte[]> bytes_;
    std::size_t capacity_ = 0;
};

} // namespace vesk
