#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <unordered_set>

namespace vesk {

/// What is restored of a member besides its content.
struct MemberStamp {
    DWORD attributes = FILE_ATTRIBUTE_ARCHIVE; ///< Read-only, hidden, system and archive.
    std::optional<FILETIME> modified;
};

/// The folder that a cabinet is extracted into. Paths given to it lie below the folder and have
/// passed the gate for names. Nothing is written through a junction or link that stands there.
class clsCabTarget {
public:
    /// Number of the failures that are refusals of ours, not the system's.
    static constexpr DWORD kLeftOut = 0;

    /// Creates the folder with those above it. @throws Failure
    explicit clsCabTarget(const std::string& folder);

    /// The path of something in the folder, of any length. @param name with "\" between its parts
    [[nodiscard]] std::wstring PathOf(const std::wstring& name) const;

    /// Creates a folder with those between it and the target folder. @param path from PathOf
    /// @throws Failure
    void EnsureFolder(const std::wstring& path);

private:
    void EnsureLevel(const std::wstring& path);

    std::wstring folder_;                    ///< In the form for long paths.
    std::wstring last_;                      ///< Neighbours mostly share their folder.
    std::unordered_set<std::wstring> known_; ///< Exist and are plain folders.
};

} // namespace vesk
