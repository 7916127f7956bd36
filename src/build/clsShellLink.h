#pragma once

#include <string>

namespace vesk {

/// Shortcut files, made by the shell's link object.
class clsShellLink {
public:
    /// Creates or overwrites the shortcut file LnkFile.
    /// @param IconIdx index of the icon in IconFile, from 0; an empty IconFile leaves the target's
    /// @param ShowCmd a SW_ constant
    /// @throws Failure
    static void CreateShellLink(const std::string& LnkFile, const std::string& ExeFile,
                                const std::string& WorkDir, const std::string& ExeArgs,
                                const std::string& IconFile, int IconIdx, int ShowCmd,
                                const std::string& strDescription);
};

} // namespace vesk
