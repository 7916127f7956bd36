#pragma once

#include "archive/ByteSource.h"
#include "base/UniqueHandle.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace vesk {

/// A file as a source of bytes. Nobody may write to it meanwhile, so its bytes stay as they were
/// judged.
class clsFileSource : public ByteSource {
public:
    /// @throws Failure
    explicit clsFileSource(const std::string& path);

    [[nodiscard]] std::uint64_t Size() const override { return size_; }
    std::size_t Read(std::uint64_t at, std::span<std::byte> to) override;

private:
    std::string path_;
    FileHandle file_;
    std::uint64_t size_ = 0;
};

} // namespace vesk
