#include "build/clsFolderGuard.h"

#include "base/RealPath.h"
#include "base/UniqueHandle.h"
#include "base/modFile.h"
#include "base/modSpecialFolder.h"
#include "base/modText.h"
#include "base/modWide.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace vesk {

namespace {

/// What the system opened. The volume's number is left out on purpose: a drive made by "subst" may
/// have another one than the drive that it leads to. Two folders of different volumes that agree in
/// the rest would be refused without need, which harms nobody.
struct Identity {
    DWORD indexHigh = 0;
    DWORD indexLow = 0;
    FILETIME created{};

    friend bool operator==(const Identity& left, const Identity& right) {
        return left.indexHigh == right.indexHigh && left.indexLow == right.indexLow &&
               CompareFileTime(&left.created, &right.created) == 0;
    }
};

/// One folder on the way down from a volume's root.
struct Level {
    std::wstring path;
    DWORD attributes = INVALID_FILE_ATTRIBUTES; ///< Of a link: the link's own.
    std::optional<Identity> identity;           ///< Of a link: of what it leads to.

    [[nodiscard]] bool IsMissing() const { return attributes == INVALID_FILE_ATTRIBUTES; }
    [[nodiscard]] bool Has(DWORD wanted) const {
        return !IsMissing() && (attributes & wanted) == wanted;
    }
};

bool SamePath(const std::wstring& left, const std::wstring& right) {
    return CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, left.data(),
                          static_cast<int>(left.size()), right.data(),
                          static_cast<int>(right.size())) == CSTR_EQUAL;
}

bool Same(const Level& left, const Level& right) {
    if (left.identity && right.identity && *left.identity == *right.identity)
        return true;
    return SamePath(left.path, right.path);
}

FileHandle OpenFolder(const std::wstring& path) {
    return FileHandle(CreateFileW(LongPath(path).c_str(), 0,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

Level LevelOf(const std::wstring& path) {
    Level level{path, GetFileAttributesW(LongPath(path).c_str()), {}};
    const FileHandle folder = OpenFolder(path);
    BY_HANDLE_FILE_INFORMATION info{};
    if (folder && GetFileInformationByHandle(folder.Get(), &info) != FALSE)
        level.identity = {info.nFileIndexHigh, info.nFileIndexLow, info.ftCreationTime};
    return level;
}

/// Length of the root in an absolute path: "C:\" or "\\server\share".
std::size_t RootLength(const std::wstring& path) {
    constexpr std::size_t kDriveRoot = 3;
    if (!path.starts_with(L"\\\\"))
        return std::min(kDriveRoot, path.size());
    const std::size_t share = path.find(L'\\', 2);
    return share == std::wstring::npos ? path.size()
                                       : std::min(path.find(L'\\', share + 1), path.size());
}

/// The folder itself, its parent, and so on up to the root.
std::vector<Level> WayUp(std::wstring path) {
    const std::size_t root = RootLength(path);
    while (path.size() > root && path.back() == L'\\')
        path.pop_back();
    std::vector<Level> levels;
    for (;;) {
        levels.push_back(LevelOf(path));
        if (path.size() <= root)
            return levels;
        path.resize(std::max(path.rfind(L'\\'), root));
    }
}

/// A folder's way up by its name and, where that is another one, by its real path.
std::vector<std::vector<Level>> WaysUp(const std::string& folder) {
    std::vector<std::vector<Level>> ways{WayUp(Widen(folder))};
    const std::wstring real = RealPath(ways[0].front().path);
    if (!SamePath(real, ways[0].front().path))
        ways.push_back(WayUp(real));
    return ways;
}

bool Leads(const std::vector<std::vector<Level>>& ways, const Level& place) {
    return std::ranges::any_of(ways, [&](const std::vector<Level>& way) {
        return std::ranges::any_of(way, [&](const Level& level) { return Same(level, place); });
    });
}

constexpr const char* kEmptied = "The installation folder is emptied before a build, ";

/// What the folder itself says, whatever is guarded.
std::string OwnObjection(const std::vector<Level>& way) {
    const Level& folder = way.front();
    if (way.size() == 1)
        return std::string(kEmptied) + "so it cannot be a whole drive";
    if (!folder.IsMissing() && !folder.Has(FILE_ATTRIBUTE_DIRECTORY))
        return "The installation folder is a file";
    if (folder.Has(FILE_ATTRIBUTE_REPARSE_POINT))
        return std::string(kEmptied) + "and this one is a link to another place";
    for (const Level& level : way) {
        const bool isRoot = &level == &way.back();
        if (!isRoot && level.Has(FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM))
            return std::string(kEmptied) + "and this one belongs to the system (" +
                   Narrowed(level.path) + " is marked so)";
        if (!level.IsMissing() && !level.Has(FILE_ATTRIBUTE_DIRECTORY))
            return "The installation folder cannot be made: " + Narrowed(level.path) + " is a file";
    }
    return {};
}

} // namespace

clsFolderGuard::clsFolderGuard(std::vector<GuardedPlace> places, std::vector<std::string> programs)
    : places_(std::move(places)), programs_(std::move(programs)) {}

clsFolderGuard clsFolderGuard::OfSystem(const std::string& programPath,
                                        const std::string& sourceFolder) {
    using Reach = GuardedPlace::Reach;
    std::vector<GuardedPlace> places{{programPath, "this program", Reach::Holding},
                                     {sourceFolder, "the Windows source", Reach::Holding}};
    struct Row {
        SpecialFolder folder;
        const char* name;
        Reach reach;
    };
    constexpr std::array kRows = {
        Row{SpecialFolder::Windows, "Windows", Reach::Within},
        Row{SpecialFolder::System, "Windows", Reach::Within},
        Row{SpecialFolder::Fonts, "the fonts", Reach::Within},
        Row{SpecialFolder::CommonAppData, "all users' program data", Reach::Within},
        Row{SpecialFolder::ProgramFilesCommon, "programs' common files", Reach::Within},
        Row{SpecialFolder::ProgramFilesCommonX86, "programs' common files", Reach::Within},
        Row{SpecialFolder::StartMenu, "the start menu", Reach::Within},
        Row{SpecialFolder::CommonStartMenu, "the start menu", Reach::Within},
        Row{SpecialFolder::CommonPrograms, "the start menu", Reach::Within},
        Row{SpecialFolder::UserProfile, "your user profile", Reach::Siblings},
        Row{SpecialFolder::AppData, "your programs' data", Reach::Holding},
        Row{SpecialFolder::LocalAppData, "your programs' data", Reach::Holding},
        Row{SpecialFolder::Documents, "your documents", Reach::Holding},
        Row{SpecialFolder::Pictures, "your pictures", Reach::Holding},
        Row{SpecialFolder::Music, "your music", Reach::Holding},
        Row{SpecialFolder::Videos, "your videos", Reach::Holding},
        Row{SpecialFolder::Favorites, "your favourites", Reach::Holding},
        Row{SpecialFolder::Desktop, "your desktop", Reach::Holding},
        Row{SpecialFolder::CommonDesktop, "all users' desktop", Reach::Holding},
        Row{SpecialFolder::CommonDocuments, "all users' documents", Reach::Holding},
    };
    for (const Row& row : kRows)
        places.push_back({SpecialFolderPath(row.folder), row.name, row.reach});
    std::array<char, MAX_PATH> temporary{};
    if (GetTempPathA(static_cast<DWORD>(temporary.size()), temporary.data()) != 0)
        places.push_back({temporary.data(), "the temporary folder", Reach::Holding});
    std::vector<std::string> programs = {SpecialFolderPath(SpecialFolder::ProgramFiles),
                                         SpecialFolderPath(SpecialFolder::ProgramFilesX86)};
    // The shell tells a 32-bit program only of the 32-bit ones.
    std::array<char, MAX_PATH> wide{};
    if (GetEnvironmentVariableA("ProgramW6432", wide.data(), static_cast<DWORD>(wide.size())) <
        wide.size())
        programs.emplace_back(wide.data());
    for (const std::string& folder : programs)
        places.push_back({folder, "Program Files", Reach::Holding});
    return clsFolderGuard(std::move(places), std::move(programs));
}

std::string clsFolderGuard::Objection(const std::string& folder) const {
    const auto ways = WaysUp(folder);
    for (const auto& way : ways) {
        if (std::string own = OwnObjection(way); !own.empty())
            return own;
    }
    for (const GuardedPlace& place : places_) {
        if (place.path.empty())
            continue;
        const auto placeWays = WaysUp(AbsolutePath(place.path));
        const Level& itself = placeWays.front().front();
        if (std::ranges::any_of(ways,
                                [&](const auto& way) { return Leads(placeWays, way.front()); }))
            return std::string(kEmptied) + "and this one holds " + place.name;
        if (itself.IsMissing() || placeWays.front().size() < 2)
            continue; // nothing can lie in it; or it is a drive, and everything on it would
        if (place.reach == GuardedPlace::Reach::Within && Leads(ways, itself))
            return std::string(kEmptied) + "and this one lies in " + place.name;
        const bool isProfile = place.reach == GuardedPlace::Reach::Siblings;
        const auto lies = [&](const auto& way) {
            return way.size() > 1 && Same(way[1], placeWays.front()[1]);
        };
        if (isProfile && placeWays.front().size() > 2 && std::ranges::any_of(ways, lies))
            return std::string(kEmptied) + "and this one is a user's profile";
    }
    return {};
}

bool clsFolderGuard::KeepsForeign(const std::string& folder) const {
    const auto ways = WaysUp(folder);
    return std::ranges::any_of(programs_, [&](const std::string& programs) {
        return !programs.empty() && Leads(ways, LevelOf(Widen(programs)));
    });
}

} // namespace vesk
