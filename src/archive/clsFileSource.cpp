#include "archive/clsFileSource.h"

#include "base/modFile.h"
#include "base/modSystemError.h"
#include "base/modWide.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace vesk {

clsFileSource::clsFileSource(const std::string& path)
    : path_(AbsolutePath(path)),
      file_(CreateFileW(LongPath(path_).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                        OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr)) {
    LARGE_INTEGER size{};
    if (!file_ || GetFileSizeEx(file_.Get(), &size) == 0)
        ThrowLastError("cannot open", path_);
    size_ = static_cast<std::uint64_t>(size.QuadPart);
}

std::size_t clsFileSource::Read(std::uint64_t at, std::span<std::byte> to) {
    if (at >= size_)
        return 0;
    // Not by the structure for overlapped reading: Wine's server would be told of each read.
    const LARGE_INTEGER place{.QuadPart = static_cast<LONGLONG>(at)};
    DWORD read = 0;
    if (SetFilePointerEx(file_.Get(), place, nullptr, FILE_BEGIN) == 0 ||
        ReadFile(file_.Get(), to.data(), static_cast<DWORD>(to.size()), &read, nullptr) == 0)
        ThrowLastError("cannot read", path_);
    return read;
}

} // namespace vesk
