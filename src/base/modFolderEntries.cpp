#include "base/modFolderEntries.h"

#include "base/UniqueHandle.h"
#include "base/modWide.h"

#include <windows.h>

#include <algorithm>
#include <array>

namespace vesk {

namespace {

/// Tags without the bit of a link that lead to another place all the same: those of distributed
/// file systems and of clusters to other servers and volumes, those of NFS wherever a Unix link
/// does. The others that are known are where they seem to be, and only their content may come from
/// elsewhere (clouds, images, what is stored once), or they are no folders at all (sockets and
/// pipes of Unix programs, names of apps).
constexpr std::array kOtherLinks = {
    0x80000009U, // CSV
    0x8000000AU, // DFS
    0x80000012U, // DFSR
    0x80000014U, // NFS
};

} // namespace

bool IsLink(std::uint32_t attributes, std::uint32_t tag) {
    constexpr std::uint32_t kStandsForAnother = 0x20000000; // "name surrogate"
    return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (tag == 0 || (tag & kStandsForAnother) != 0 ||
            std::ranges::find(kOtherLinks, tag) != kOtherLinks.end());
}

bool IsLink(const std::wstring& path, std::uint32_t attributes) {
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
        return false;
    WIN32_FIND_DATAW found{};
    const FindHandle find(FindFirstFileW(path.c_str(), &found));
    const bool isTagged = find && (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    return IsLink(attributes, isTagged ? found.dwReserved0 : 0);
}

bool FolderEntry::IsFolder() const {
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool FolderEntry::IsLink() const {
    return vesk::IsLink(attributes, tag);
}

std::uint32_t ForEachEntry(const std::wstring& folder,
                           const std::function<void(const FolderEntry&)>& visit,
                           const std::wstring& pattern) {
    const bool endsInBackslash = folder.ends_with(L'\\');
    const std::wstring search = LongPath(folder + (endsInBackslash ? L"" : L"\\") + pattern);
    WIN32_FIND_DATAW found{};
    const FindHandle find(FindFirstFileW(search.c_str(), &found));
    if (!find)
        return GetLastError() == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : GetLastError();
    do {
        const FolderEntry entry{found.cFileName, found.cAlternateFileName, found.dwFileAttributes,
                                std::uint64_t{found.nFileSizeHigh} << 32 | found.nFileSizeLow,
                                found.dwReserved0};
        if (entry.name != L"." && entry.name != L"..")
            visit(entry);
    } while (FindNextFileW(find.Get(), &found) != FALSE);
    return GetLastError() == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : GetLastError();
}

} // namespace vesk
