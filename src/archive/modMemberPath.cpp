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

/// Whether the name means the same to the ANSI functions, with which the rest of the program works:
/// they take "\" for other strokes and ":" for other colons.
bool MeansTheSameInAnsi(std::wstring_view folder, std::wstring_view name,
                        const std::wstring& path) {
    if (std::ranges::all_of(name, [](wchar_t c) { return c < 0x80; }))
        return true;
    const std::wstring seen = AsAnsiSees(name);
    if (seen == name)
        return true;
    const auto seenPath = PathInside(folder, seen);
    return seenPath && std::ranges::count(*seenPath, L'\\') == std::ranges::count(path, L'\\');
}

} // namespace

std::wstring MemberPath(std::wstring_view folder, std::wstring_view name, bool isFolder) {
    if (isFolder && NamesFolderItself(name))
        return std::wstring(folder);
    std::string objection;
    auto path = PathInside(folder, name, &objection);
    if (!path)
        throw ArchiveProblem(objection);
    if (!MeansTheSameInAnsi(folder, name, *path))
        throw ArchiveProblem("a part of its name has another meaning in the system's code page");
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
