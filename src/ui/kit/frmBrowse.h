#pragma once

#include <windows.h>

#include <string>

namespace vesk {

/// The dialogs in which the user picks a folder or a file: the system's own, so that they look and
/// work as in every other program.
class frmBrowse {
public:
    /// @param owner window over which the dialogs open
    explicit frmBrowse(HWND owner) : owner_(owner) {}

    /// @param startFolder shown first; one that does not exist is ignored
    /// @return the folder, or an empty text when the user cancels
    /// @throws Failure for one with a letter that the code page lacks
    [[nodiscard]] std::string ChooseFolder(const std::string& title,
                                           const std::string& startFolder) const;

    /// @param pattern file name patterns of archives, separated by ";"
    /// @return full path of the file, or an empty text when the user cancels
    /// @throws Failure as above
    [[nodiscard]] std::string ChooseFile(const std::string& title, const std::string& pattern,
                                         const std::string& startFolder) const;

private:
    HWND owner_;
};

} // namespace vesk
