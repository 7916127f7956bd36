#include "base/modFolderEntries.h"

#include "base/UniqueHandle.h"
#include "base/modWide.h"

#include <windows.h>

namespace vesk {

bool FolderEntry::IsFolder() const {
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool FolderEntry::IsLink() const {
    return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
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
                                std::uint64_t{found.nFileSizeHigh} << 32 | found.nFileSizeLow};
        if (entry.name != L"." && entry.name != L"..")
            visit(entry);
    } while (FindNextFileW(find.Get(), &found) != FALSE);
    return GetLastError() == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : GetLastError();
}

} // namespace vesk
