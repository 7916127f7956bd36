#include "archive/modUnzipName.h"

#include "archive/modMemberName.h"
#include "archive/modZipTexts.h"
#include "base/modUtf8.h"
#include "base/modWide.h"

#include <algorithm>

namespace vesk {

namespace {

/// @return nothing when the name's UTF-8 is damaged
std::optional<std::wstring> WideName(const ZipMember& member) {
    switch (member.encoding) {
    case NameEncoding::Ascii:
        return std::wstring(member.name.begin(), member.name.end());
    case NameEncoding::Utf8:
        return FromUtf8(member.name);
    case NameEncoding::Oem:
        return WidenFromOem(member.name);
    case NameEncoding::Ansi:
        break;
    }
    return Widen(member.name);
}

/// Whether the name means the same to the ANSI functions, with which the rest of the program works:
/// they take "\" for other strokes and ":" for other colons.
bool MeansTheSameInAnsi(std::wstring_view folder, std::wstring_view name,
                        const std::wstring& path) {
    const std::wstring seen = AsAnsiSees(name);
    if (seen == name)
        return true;
    const auto seenPath = PathInside(folder, seen);
    return seenPath && std::ranges::count(*seenPath, L'\\') == std::ranges::count(path, L'\\');
}

} // namespace

std::wstring MemberPath(std::wstring_view folder, const ZipMember& member) {
    const auto name = WideName(member);
    if (!name)
        throw ZipProblem("its name is damaged");
    if (member.IsFolder() && NamesFolderItself(*name))
        return std::wstring(folder);
    std::string objection;
    auto path = PathInside(folder, *name, &objection);
    if (!path)
        throw ZipProblem(objection);
    if (member.encoding != NameEncoding::Ascii && !MeansTheSameInAnsi(folder, *name, *path))
        throw ZipProblem("a part of its name has another meaning in the system's code page");
    return std::move(*path);
}

std::string ShownName(const ZipMember& member) {
    constexpr std::size_t kLongest = 300;
    const auto wide = WideName(member);
    std::string shown = PrintableName(wide ? Narrowed(*wide) : member.name);
    std::ranges::replace(shown, '/', '\\');
    if (shown.size() > kLongest)
        shown = shown.substr(0, kLongest) + "...";
    return shown.empty() ? "(no name)" : shown;
}

} // namespace vesk
