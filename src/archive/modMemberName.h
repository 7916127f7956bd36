#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vesk {

/// Longest name of a member that becomes a path, and how many folders and files it may pass
/// through: as many as the classic path of 260 characters can. File systems take more, but no
/// archive in use has more, and making a folder costs more the deeper it is.
constexpr std::size_t kLongestMemberName = 4096;
constexpr std::size_t kDeepestMemberName = 128;

/// The one gate through which a name from an archive becomes a path: the folder joined with the
/// name, or nothing when the name could lead outside the folder or to something that is no plain
/// file. It refuses "..", absolute and drive-relative names, alternate streams, device names, parts
/// that end in a dot or blank or are longer than a file's name can be, control characters. What
/// means nothing is left out, as every archiver does: "./a//b" is "a\b". A name of which nothing
/// stays is refused.
/// @param folder target folder, with or without a trailing backslash
/// @param memberName name with "/" or "\" between its parts; one separator at its end is allowed
std::optional<std::string> PathInside(std::string_view folder, std::string_view memberName);

/// The same for a name as the file system gets it, in UTF-16; halves of surrogate pairs are refused
/// too.
/// @param objection receives why a name is refused; may be null
std::optional<std::wstring> PathInside(std::wstring_view folder, std::wstring_view memberName,
                                       std::string* objection = nullptr);

/// True for "./" and its like: a relative name that leads nowhere but to the folder itself.
bool NamesFolderItself(std::wstring_view memberName);

} // namespace vesk
