#include "archive/modMemberPath.h"

#include "archive/ArchiveProblem.h"
#include "archive/modMemberName.h"
#include "archive/modZipTexts.h"
#include "base/modWide.h"

#include <windows.h>

#include <algorithm>

namespace vesk {

std::wstring MemberPath(std::wstring_view folder, std::wstring_view name, bool isFolder) {
    if (isFolder && NamesFolderItself(name))
        return std::wstring(folder);
    std::string objection;
    auto path = PathInside(folder, name, &objection);
    if (!path)
        throw ArchiveProblem(objection);
    return std::move(*path);
}

std::string ShownName(std::wstring_view name) {
    constexpr std::size_t kLongest = 300;
    std::string shown = PrintableName(Narrowed(name));
    std::ranges::replace(shown, '/', '\\');
    if (shown.size() > kLongest)
        shown = shown.substr(0, kLongest) + "...";
    return shown.empty() ? "(no name)" : shown;
}

std::wstring FoldedName(std::wstring_view name) {
    std::wstring folded(name);
    CharUpperBuffW(folded.data(), static_cast<DWORD>(folded.size()));
    return folded;
}

} // namespace vesk
