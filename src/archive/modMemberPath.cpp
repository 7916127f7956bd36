#include "archive/modMemberPath.h"

#include "archive/ArchiveProblem.h"
#include "archive/modMemberName.h"
#include "archive/modZipTexts.h"
#include "base/modWide.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace vesk {

namespace {

/// Whether an ANSI program that lists the name, as PE Builder may, would go up with it: such a
/// program sees "\" for other strokes and "." for other dots.
bool LeadsOutInAnsi(std::wstring_view name) {
    if (std::ranges::all_of(name, [](wchar_t c) { return c < 0x80; }))
        return false;
    const std::wstring seen = AsAnsiSees(name);
    for (std::size_t from = 0; from <= seen.size();) {
        const std::size_t end = std::min(seen.find_first_of(L"\\/", from), seen.size());
        if (seen.compare(from, end - from, L"..") == 0)
            return true;
        from = end + 1;
    }
    return false;
}

} // namespace

std::wstring MemberPath(std::wstring_view folder, std::wstring_view name, bool isFolder) {
    if (isFolder && NamesFolderItself(name))
        return std::wstring(folder);
    std::string objection;
    auto path = PathInside(folder, name, &objection);
    if (!path)
        throw ArchiveProblem(objection);
    if (LeadsOutInAnsi(name))
        throw ArchiveProblem("its name leads out of the folder for programs in the code page");
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
