#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vesk {

/// One INI file through the platform's profile functions. Keeps no handle: every call opens and
/// closes the file. Unless stated otherwise nothing is thrown; failures give empty results or
/// unwritten values. A path of MAX_PATH characters or more is never handed to the platform, which
/// would take it for another.
class clsINI {
public:
    clsINI() = default;
    /// @param path see iniFileName
    explicit clsINI(std::string path) : iniFileName(std::move(path)) {}

    std::string iniFileName; ///< Full path of the file that the operations work on.

    /// Value of a key, cut at 254 characters, without the blanks around it; empty when missing.
    [[nodiscard]] std::string GetStringValue(const std::string& section,
                                             const std::string& key) const;

    /// The same where a file that is not read must not pass for one without the key.
    /// @throws Failure as far as the platform reports it
    [[nodiscard]] std::string ReadStringValue(const std::string& section,
                                              const std::string& key) const;

    /// True when GetStringValue leaves out the end of a key's value.
    [[nodiscard]] bool IsCut(const std::string& section, const std::string& key) const;

    /// Value of a key as a number; 0 when missing or not a number.
    [[nodiscard]] int GetIntValue(const std::string& section, const std::string& key) const;

    /// All section names, and one empty element behind them. Names beyond the first 254 characters
    /// (ends included) are cut off.
    [[nodiscard]] std::vector<std::string> GetAllSections() const;

    /// All key names of a section, and one empty element behind them.
    [[nodiscard]] std::vector<std::string> GetAllKeys(const std::string& section) const;

    /// Replaces a value in place, or adds the key at the end of its section and the section at the
    /// end of the file. Without a value the key is deleted; an empty value stays with its key.
    /// @return false when it was not written; the thread's last error then says why
    bool SetValue(const std::string& section, const std::string& key,
                  const std::optional<std::string>& value) const;
};

} // namespace vesk
