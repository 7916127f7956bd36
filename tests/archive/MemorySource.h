#pragma once

#include "archive/ByteSource.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

namespace vesk::test {

/// An archive in memory, as the program would find it in a file.
class MemorySource : public ByteSource {
public:
    explicit MemorySource(std::string bytes) : bytes_(std::move(bytes)) {}

    [[nodiscard]] std::uint64_t Size() const override { return bytes_.size(); }
    std::size_t Read(std::uint64_t at, std::span<std::byte> to) override {
        if (at >= bytes_.size())
            return 0;
        const auto rest = std::as_bytes(std::span(bytes_)).subspan(static_cast<std::size_t>(at));
        const std::size_t count = std::min(rest.size(), to.size());
        std::ranges::copy(rest.first(count), to.begin());
        return count;
    }

private:
    std::string bytes_;
};

} // namespace vesk::test
