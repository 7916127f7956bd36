#include "base/modSpecialFolder.h"

#include "base/UniqueHandle.h"
#include "base/modText.h"

#include <windows.h>

#include <objbase.h>
#include <shlobj.h>

#include <array>

namespace vesk {

std::string SpecialFolderPath(SpecialFolder folder) {
    LPITEMIDLIST found = nullptr;
    if (SHGetFolderLocation(nullptr, static_cast<int>(folder), nullptr, 0, &found) != S_OK)
        return {};
    const UniqueHandle<::CoTaskMemFree, LPVOID> owner(found);
    std::array<char, MAX_PATH> path{};
    if (SHGetPathFromIDListA(found, path.data()) == FALSE)
        return {};
    return WithoutTrailingBackslash(path.data());
}

} // namespace vesk
