#pragma once

#include "base/UniqueHandle.h"

#include <cstddef>
#include <span>
#include <string>

namespace vesk {

/// A file as memory. Nobody may write to it meanwhile, so its bytes stay as they were checked.
class clsMappedArchive {
public:
    /// @throws Failure
    explicit clsMappedArchive(const std::string& path);

    [[nodiscard]] std::span<const std::byte> Bytes() const { return bytes_; }

private:
    FileHandle file_;
    MappingHandle mapping_;
    MappedView view_;
    std::span<const std::byte> bytes_;
};

} // namespace vesk
