#include "archive/modArchiveName.h"

#include "archive/modMemberName.h"
#include "base/CodePage.h"
#include "base/modText.h"

#include <algorithm>
#include <array>

namespace vesk {

ArchiveKind ArchiveKindOf(std::string_view path) {
    const std::string extension = LowerCase(ExtensionOf(path));
    if (extension == "zip")
        return ArchiveKind::Zip;
    return extension == "cab" ? ArchiveKind::Cabinet : ArchiveKind::Neither;
}

std::string ArchiveNameFault(std::string_view name) {
    constexpr std::array<std::string_view, 9> kOwnFiles = {
        "veskbuilder.exe",    "veskbuild.exe", "veskbuilder.ini",
        "veskbuilder.hlp",    "readme.txt",    "veskbuider.log",
        "veskbuilder.sha256", "uninstall.exe", "veskbuilder-problems.txt"};
    if (!IsPlainFileName(name))
        return "not a plain file name";
    const bool isOwn = std::ranges::any_of(
        kOwnFiles, [name](std::string_view own) { return EqualNoCase(own, name); });
    return isOwn ? "reserved for the program itself" : "";
}

bool IsPlainArchiveName(std::string_view name) {
    return ArchiveNameFault(name).empty();
}

bool IsReplaceableArchiveName(std::string_view name) {
    return IsPlainArchiveName(name) && ArchiveKindOf(name) != ArchiveKind::Neither;
}

bool IsPlainFileName(std::string_view name) {
    return WithoutTrailBytes(name).find_first_of("\\/") == std::string::npos &&
           PathInside("", name).has_value();
}

} // namespace vesk
