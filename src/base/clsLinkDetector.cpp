#include "base/clsLinkDetector.h"

#include "base/RealPath.h"

#include <windows.h>

namespace vesk {

namespace {

bool IsSameName(const std::wstring& left, const std::wstring& right) {
    return CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, left.data(),
                          static_cast<int>(left.size()), right.data(),
                          static_cast<int>(right.size())) == CSTR_EQUAL;
}

} // namespace

bool clsLinkDetector::SystemHidesLinks() {
    static const bool hides =
        GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
    return hides;
}

bool clsLinkDetector::IsFileLink(const std::wstring& folder, const std::wstring& name,
                                 std::uint32_t attributes) {
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        return true;
    if (!SystemHidesLinks())
        return false;
    if (folder != folder_) {
        folder_ = folder;
        realFolder_ = RealPath(folder);
    }
    const std::wstring separator = realFolder_.ends_with(L'\\') ? L"" : L"\\";
    return !IsSameName(RealPath(folder + L"\\" + name), realFolder_ + separator + name);
}

} // namespace vesk
