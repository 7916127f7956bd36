#include "archive/modZipFields.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace vesk {

bool HasSignature(clsByteWindow& archive, std::uint64_t at, std::uint32_t signature) {
    return clsByteReader(archive.View(at, 4)).U32() == signature;
}

std::optional<std::uint64_t> FindSignature(clsByteWindow& archive, std::uint64_t at,
                                           std::uint64_t end, std::uint32_t signature) {
    std::array<std::byte, 4> mark{};
    for (std::byte& byte : mark) {
        byte = static_cast<std::byte>(signature & 0xFF);
        signature >>= 8;
    }
    while (at < end && end - at >= mark.size()) {
        std::span<const std::byte> bytes = archive.ViewAtLeast(at, mark.size());
        if (bytes.size() > end - at)
            bytes = bytes.first(static_cast<std::size_t>(end - at));
        if (bytes.size() < mark.size())
            break;
        const auto found = std::search(bytes.begin(), bytes.end(), mark.begin(), mark.end());
        if (found != bytes.end())
            return at + static_cast<std::uint64_t>(found - bytes.begin());
        at += bytes.size() - (mark.size() - 1);
    }
    return std::nullopt;
}

} // namespace vesk
