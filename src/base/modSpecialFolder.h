#pragma once

#include <string>

namespace vesk {

/// The shell's numbers of the folders that the program asks for.
enum class SpecialFolder : int {
    Documents = 5,
    Favorites = 6,
    Recent = 8,
    SendTo = 9,
    StartMenu = 11, ///< The current user's.
    Music = 13,
    Videos = 14,
    Desktop = 16, ///< The current user's desktop folder.
    NetHood = 19,
    Fonts = 20,
    Templates = 21,
    CommonStartMenu = 22, ///< The start menu of all users.
    CommonPrograms = 23,  ///< Its programs.
    CommonDesktop = 25,
    AppData = 26,
    PrintHood = 27,
    LocalAppData = 28,
    Cookies = 33,
    CommonAppData = 35,
    Windows = 36,
    System = 37,
    ProgramFiles = 38,
    Pictures = 39,
    UserProfile = 40,
    ProgramFilesX86 = 42, ///< Where a 64-bit system keeps 32-bit programs.
    ProgramFilesCommon = 43,
    ProgramFilesCommonX86 = 44,
    CommonDocuments = 46,
};

/// Path of a special folder without a trailing backslash; empty when the system has none.
std::string SpecialFolderPath(SpecialFolder folder);

/// The same in UTF-16, where it may not pass for another one: the code page may lack letters of the
/// user's name.
std::wstring SpecialFolderWidePath(SpecialFolder folder);

} // namespace vesk
