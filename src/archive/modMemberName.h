#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vesk {

/// The one gate through which a name from an archive becomes a path: the folder joined with the
/// name, or nothing when the name could lead outside the folder or to something that is no plain
/// file. It refuses and does not repair: "..", absolute and drive-relative names, alternate
/// streams, device names, names with a dot or blank at the end of a part, control characters.
/// @param folder target folder, with or without a trailing backslash
/// @param memberName name with "/" or "\" between its parts; one separator at its end is allowed
std::optional<std::string> PathInside(std::string_view folder, std::string_view memberName);

} // namespace vesk
