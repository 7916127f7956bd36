#pragma once

#include "build/clsBuildContext.h"
#include "catalogue/clsINI.h"

#include <string>

namespace vesk {

/// The profile functions know UTF-16 by its mark only; anything else they take for ANSI text, and
/// mix both when they write. @throws Failure for a file that they would damage; a missing one is
/// fine
void RequireAnsi(const std::string& path);

/// Writes one INI file of the build tree and reports, once, when a value could not be written.
class clsReportedIni {
public:
    /// @param context must outlive the object
    clsReportedIni(const clsBuildContext& context, const std::string& path);

    /// Full path of the file.
    [[nodiscard]] const std::string& Path() const { return ini_.iniFileName; }

    /// Value of a key, empty when there is none; see clsINI. @throws Failure when the file is there
    /// and was not read
    [[nodiscard]] std::string GetStringValue(const std::string& section,
                                             const std::string& key) const {
        return ini_.ReadStringValue(section, key);
    }

    /// To be called when a value is used: reports when GetStringValue cut it.
    void TellCut(const std::string& section, const std::string& key) const;

    /// Writes a value, into a read-only file too: archives bring such files.
    void SetValue(const std::string& section, const std::string& key, const std::string& value);

private:
    const clsBuildContext& context_;
    clsINI ini_;
    bool told_ = false;
};

} // namespace vesk
