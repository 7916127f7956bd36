#include "archive/clsFileSource.h"

#include "base/modFile.h"
#include "base/modSystemError.h"
#include "base/modWide.h"

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
    OVERLAPPED position{};
    position.Offset = static_cast<DWORD>(at);
    position.OffsetHigh = static_cast<DWORD>(at >> 32);
    DWORD read = 0;
    if (ReadFile(file_.Get(), to.data(), static_cast<DWORD>(to.size()), &read, &position) == 0 &&
        GetLastError() != ERROR_HANDLE_EOF)
        ThrowLastError("cannot read", path_);
    return read;
}

} // namespace vesk
