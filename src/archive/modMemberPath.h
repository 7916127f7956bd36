#pragma once

#include <string>
#include <string_view>

/// Members' names as paths and for people, whatever the archive's kind. A name is given in UTF-16,
/// as it stands in the archive.
namespace vesk {

/// The reason for a folder's name with bytes behind it.
constexpr const char* kFolderWithContent = "it is a folder but has content";

/// The path of a member below the folder. The gate judges the name as the file system gets it, and
/// as the functions of the ANSI code page would see it.
/// @param folder absolute, without a trailing backslash; empty for no folder at all
/// @return the folder itself for the folder "./" @throws ArchiveProblem when the name is refused
std::wstring MemberPath(std::wstring_view folder, std::wstring_view name, bool isFolder);

/// A member's name for people: separated by "\", in the ANSI code page as far as that goes, "?" for
/// control characters, its end left out when it is very long. Never empty.
std::string ShownName(std::wstring_view name);

/// The name as file systems compare it.
std::wstring FoldedName(std::wstring_view name);

} // namespace vesk
