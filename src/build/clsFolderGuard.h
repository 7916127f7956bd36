#pragma once

#include <memory>
#include <string>
#include <vector>

namespace vesk {

/// A place that must survive whatever installation folder a user names.
struct GuardedPlace {
    enum class Reach {
        Holding,  ///< A folder that is it, or holds it, is refused.
        Within,   ///< So is one inside it.
        Siblings, ///< So is one next to it: other users' profiles.
    };

    /// Absolute; an empty one guards nothing. In UTF-16: the code page may lack letters of the
    /// user's name, and would make another folder's path of it, or none.
    std::wstring path;
    std::string name; ///< For people: "Windows", "this program".
    Reach reach = Reach::Holding;
};

/// Knows which folders must not be emptied. Folders are compared by what the system opens under
/// their names, so that no other spelling, short name, drive made by "subst" or link gets around
/// it.
class clsFolderGuard {
public:
    /// @param programs folders that programs are installed into: a folder below one is refused when
    /// it holds anything that no build made
    explicit clsFolderGuard(const std::vector<GuardedPlace>& places,
                            const std::vector<std::wstring>& programs = {});

    /// The guard of this system and user. @param programPath, sourceFolder may end in "\";
    /// sourceFolder may be empty
    static clsFolderGuard OfSystem(const std::string& programPath, const std::string& sourceFolder);

    /// The folders that hold the users' data of all programs: the parent of each data folder. Where
    /// that is the profile itself, as in Windows XP, the user's things are in it too, and it is the
    /// data folder alone. @param profile, data absolute; an empty one of the data folders stays
    /// empty
    static std::vector<std::wstring> AmongData(const std::wstring& profile,
                                               std::vector<std::wstring> data);

    /// Why a folder must not be emptied, or made and emptied later: a sentence without the path;
    /// empty when nothing speaks against it. @param folder absolute, may be missing
    [[nodiscard]] std::string Objection(const std::string& folder) const;

    /// True for a folder in which only what a build made may be emptied, whatever the user says.
    [[nodiscard]] bool KeepsForeign(const std::string& folder) const;

private:
    struct Known;

    std::shared_ptr<Known> known_; ///< The places as they were found once: there are many.
};

} // namespace vesk
