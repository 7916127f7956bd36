#include "archive/clsMappedArchive.h"

#include "base/modSystemError.h"
#include "base/modWide.h"

#include <limits>

namespace vesk {

clsMappedArchive::clsMappedArchive(const std::string& path)
    : file_(CreateFileW(AbsoluteLongPath(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                        OPEN_EXISTING, 0, nullptr)) {
    LARGE_INTEGER size{};
    if (!file_ || GetFileSizeEx(file_.Get(), &size) == 0)
        ThrowLastError("cannot open", path);
    if (size.QuadPart == 0)
        return; // cannot be mapped, and holds no archive anyway
    // Not std::size_t: a 32-bit program has more addresses than the difference of two can tell.
    if (size.QuadPart > std::numeric_limits<std::ptrdiff_t>::max())
        ThrowSystemError(ERROR_NOT_ENOUGH_MEMORY, "cannot read", path);
    mapping_.Reset(CreateFileMappingW(file_.Get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
    if (mapping_)
        view_.Reset(MapViewOfFile(mapping_.Get(), FILE_MAP_READ, 0, 0, 0));
    if (!view_)
        ThrowLastError("cannot read", path);
    bytes_ = {static_cast<const std::byte*>(view_.Get()), static_cast<std::size_t>(size.QuadPart)};
}

} // namespace vesk
