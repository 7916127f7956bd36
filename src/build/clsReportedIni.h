#pragma once

#include "build/BuildContext.h"
#include "catalogue/clsINI.h"

#include <string>

namespace vesk {

/// Writes one INI file of the build tree and reports, once, when a value could not be written.
class clsReportedIni {
public:
    /// @param context must outlive the object
    clsReportedIni(const BuildContext& context, const std::string& path);

    [[nodiscard]] const std::string& Path() const { return ini_.iniFileName; }

    /// Value of a key; see clsINI.
    [[nodiscard]] std::string GetStringValue(const std::string& section,
                                             const std::string& key) const {
        return ini_.GetStringValue(section, key);
    }

    /// Writes a value, into a read-only file too: archives bring such files.
    void SetValue(const std::string& section, const std::string& key, const std::string& value);

private:
    const BuildContext& context_;
    clsINI ini_;
    bool told_ = false;
};

} // namespace vesk
