#pragma once

#include <string>

namespace vesk {

/// The shell's numbers of the folders that the program asks for.
enum class SpecialFolder : int {
    Documents = 5,
    Desktop = 16,        ///< The current user's desktop folder.
    CommonPrograms = 23, ///< The start menu's programs of all users.
    Windows = 36,
    ProgramFiles = 38,
    UserProfile = 40,
};

/// Path of a special folder without a trailing backslash; empty when the system has none.
std::string SpecialFolderPath(SpecialFolder folder);

} // namespace vesk
