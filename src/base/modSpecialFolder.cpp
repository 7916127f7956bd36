#include "base/modSpecialFolder.h"

#include "base/UniqueHandle.h"
#include "base/modText.h"

#include <windows.h>

#include <objbase.h>
#include <shlobj.h>

#include <array>

namespace vesk {

namespace {

/// @param getPath of the shell, for the letters of the buffer @return empty when there is none
template <class Letter>
std::basic_string<Letter> PathOf(SpecialFolder folder,
                                 BOOL(WINAPI* getPath)(LPCITEMIDLIST, Letter*)) {
    LPITEMIDLIST found = nullptr;
    if (SHGetFolderLocation(nullptr, static_cast<int>(folder), nullptr, 0, &found) != S_OK)
        return {};
    const UniqueHandle<::CoTaskMemFree, LPVOID> owner(found);
    std::array<Letter, MAX_PATH> path{};
    return getPath(found, path.data()) != FALSE ? path.data() : std::basic_string<Letter>();
}

} // namespace

std::string SpecialFolderPath(SpecialFolder folder) {
    return WithoutTrailingBackslash(PathOf<char>(folder, SHGetPathFromIDListA));
}

std::wstring SpecialFolderWidePath(SpecialFolder folder) {
    std::wstring path = PathOf<wchar_t>(folder, SHGetPathFromIDListW);
    if (path.ends_with(L'\\'))
        path.pop_back();
    return path;
}

} // namespace vesk
