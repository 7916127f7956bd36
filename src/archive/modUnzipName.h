#pragma once

#include "archive/modZipDirectory.h"

#include <string_view>

namespace vesk {

/// The path of a member below the folder, in UTF-16. The gate judges the name as the file system
/// gets it, and as the functions of the ANSI code page would see it.
/// @param folder absolute, without a trailing backslash
/// @return the folder itself for "./"
/// @throws ZipProblem when the name is refused
std::wstring MemberPath(std::wstring_view folder, const ZipMember& member);

/// A member's name for people: parted by "\", in the ANSI code page as far as that goes, "?" for
/// control characters, its end left out when it is very long. Never empty.
std::string ShownName(const ZipMember& member);

} // namespace vesk
