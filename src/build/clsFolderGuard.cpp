#include "build/clsFolderGuard.h"

#include "base/UniqueHandle.h"
#include "base/modFolderEntries.h"
#include "base/modSpecialFolder.h"
#include "base/modText.h"
#include "base/modWide.h"
#include "build/clsFolderReader.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

namespace vesk {

namespace {

bool Leads(const std::vector<std::vector<FolderLevel>>& ways, const FolderLevel& place) {
    return std::ranges::any_of(ways, [&](const std::vector<FolderLevel>& way) {
        return std::ranges::any_of(
            way, [&](const FolderLevel& level) { return IsSameFolder(level, place); });
    });
}

/// What the shell has noted of the user's and of all users' folders: newer systems have more of
/// them than there are numbers for.
std::vector<std::wstring> RegisteredShellFolders() {
    constexpr const char* kKey =
        R"(Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders)";
    std::vector<std::wstring> folders;
    for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        UniqueHandle<::RegCloseKey, HKEY> key;
        if (RegOpenKeyExA(root, kKey, 0, KEY_READ, key.Out()) != ERROR_SUCCESS)
            continue;
        for (DWORD index = 0;; ++index) {
            std::array<wchar_t, 256> name{};
            std::array<wchar_t, 1024> value{};
            std::array<wchar_t, 1024> expanded{};
            DWORD nameSize = name.size();
            DWORD valueSize = (value.size() - 1) * sizeof(wchar_t);
            const LSTATUS error =
                RegEnumValueW(key.Get(), index, name.data(), &nameSize, nullptr, nullptr,
                              reinterpret_cast<BYTE*>(value.data()), &valueSize);
            if (error != ERROR_SUCCESS && error != ERROR_MORE_DATA)
                break; // at the end; or the key is gone, and would be for each index
            const DWORD length = ExpandEnvironmentStringsW(value.data(), expanded.data(),
                                                           static_cast<DWORD>(expanded.size()));
            if (error == ERROR_SUCCESS && length <= expanded.size() && expanded[1] == L':')
                folders.emplace_back(expanded.data());
        }
    }
    return folders;
}

using Reach = GuardedPlace::Reach;

/// A folder of the system's that is guarded.
struct SystemPlace {
    SpecialFolder folder;
    const char* name;
    Reach reach;
};
constexpr std::array kSystemPlaces = {
    SystemPlace{SpecialFolder::Windows, "Windows", Reach::Within},
    SystemPlace{SpecialFolder::System, "Windows", Reach::Within},
    SystemPlace{SpecialFolder::Fonts, "the fonts", Reach::Within},
    SystemPlace{SpecialFolder::CommonAppData, "all users' program data", Reach::Within},
    SystemPlace{SpecialFolder::ProgramFilesCommon, "programs' common files", Reach::Within},
    SystemPlace{SpecialFolder::ProgramFilesCommonX86, "programs' common files", Reach::Within},
    SystemPlace{SpecialFolder::StartMenu, "the start menu", Reach::Within},
    SystemPlace{SpecialFolder::CommonStartMenu, "the start menu", Reach::Within},
    SystemPlace{SpecialFolder::CommonPrograms, "the start menu", Reach::Within},
    SystemPlace{SpecialFolder::UserProfile, "your user profile", Reach::Siblings},
    SystemPlace{SpecialFolder::AppData, "your programs' data", Reach::Holding},
    SystemPlace{SpecialFolder::LocalAppData, "your programs' data", Reach::Holding},
    SystemPlace{SpecialFolder::Documents, "your documents", Reach::Holding},
    SystemPlace{SpecialFolder::Pictures, "your pictures", Reach::Holding},
    SystemPlace{SpecialFolder::Music, "your music", Reach::Holding},
    SystemPlace{SpecialFolder::Videos, "your videos", Reach::Holding},
    SystemPlace{SpecialFolder::Favorites, "your favourites", Reach::Holding},
    SystemPlace{SpecialFolder::Desktop, "your desktop", Reach::Holding},
    SystemPlace{SpecialFolder::CommonDesktop, "all users' desktop", Reach::Holding},
    SystemPlace{SpecialFolder::CommonDocuments, "all users' documents", Reach::Holding},
};

/// The folders that programs are installed into.
std::vector<std::wstring> ProgramFolders() {
    std::vector<std::wstring> folders = {SpecialFolderWidePath(SpecialFolder::ProgramFiles),
                                         SpecialFolderWidePath(SpecialFolder::ProgramFilesX86)};
    // The shell shows a 32-bit program only the 32-bit ones.
    std::array<wchar_t, MAX_PATH> others{};
    if (GetEnvironmentVariableW(L"ProgramW6432", others.data(), static_cast<DWORD>(others.size())) <
        others.size())
        folders.emplace_back(others.data());
    return folders;
}

/// Where programs keep what is the user's: no more than a program's own folder is that replaced.
std::vector<std::wstring> DataFolders() {
    const auto path = SpecialFolderWidePath;
    std::vector<std::wstring> folders =
        clsFolderGuard::AmongData(path(SpecialFolder::UserProfile),
                                  {path(SpecialFolder::AppData), path(SpecialFolder::LocalAppData),
                                   path(SpecialFolder::CommonDocuments)});
    // In Windows XP these are beside the programs' data, later among them.
    for (const SpecialFolder kept :
         {SpecialFolder::Recent, SpecialFolder::SendTo, SpecialFolder::NetHood,
          SpecialFolder::Templates, SpecialFolder::PrintHood, SpecialFolder::Cookies})
        folders.push_back(path(kept));
    return folders;
}

/// How a folder is to a guarded place, where that forbids it to be emptied: the words in front of
/// the place's name. Null when nothing speaks against it.
const char* Relation(const std::vector<std::vector<FolderLevel>>& ways,
                     const std::vector<std::vector<FolderLevel>>& placeWays,
                     GuardedPlace::Reach reach) {
    const std::vector<FolderLevel>& place = placeWays.front();
    if (std::ranges::any_of(ways, [&](const auto& way) { return Leads(placeWays, way.front()); }))
        return "holds ";
    const auto liesBeside = [&](const auto& way) {
        return way.size() > 1 && IsSameFolder(way[1], place[1]);
    };
    if (reach == GuardedPlace::Reach::Siblings && place.size() > 2 &&
        std::ranges::any_of(ways, liesBeside))
        return "is a user's profile";
    if (place.front().IsMissing() || place.size() < 2)
        return nullptr; // nothing can lie in it; or it is a drive, and everything on it would
    return reach == GuardedPlace::Reach::Within && Leads(ways, place.front()) ? "lies in "
                                                                              : nullptr;
}

constexpr const char* kEmptied = "The installation folder is emptied before a build, ";

/// What the folder itself says, whatever is guarded.
std::string OwnObjection(const std::vector<FolderLevel>& way) {
    const FolderLevel& folder = way.front();
    if (way.size() == 1)
        return std::string(kEmptied) + "so it cannot be a whole drive";
    if (!folder.IsMissing() && !folder.Has(FILE_ATTRIBUTE_DIRECTORY))
        return "The installation folder is a file";
    if (!folder.IsMissing() && IsLink(LongPath(folder.path), folder.attributes))
        return std::string(kEmptied) + "but this one is a link to another place";
    for (const FolderLevel& level : way) {
        const bool isRoot = &level == &way.back();
        if (!isRoot && level.Has(FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM))
            return std::string(kEmptied) + "but this one belongs to the system (" +
                   Narrowed(level.path) + " is marked so)";
        if (!level.IsMissing() && !level.Has(FILE_ATTRIBUTE_DIRECTORY))
            return "The installation folder cannot be made: " + Narrowed(level.path) + " is a file";
    }
    return {};
}

} // namespace

struct clsFolderGuard::Known {
    struct Place {
        GuardedPlace place;
        std::vector<std::vector<FolderLevel>> ways;
    };
    std::vector<Place> places;
    std::vector<FolderLevel> programs;
};

clsFolderGuard::clsFolderGuard(const std::vector<GuardedPlace>& places,
                               const std::vector<std::wstring>& programs)
    : known_(std::make_shared<Known>()) {
    clsFolderReader reader;
    // The shell names many folders more than once.
    std::set<std::pair<std::wstring, std::string>> seen;
    for (const GuardedPlace& place : places) {
        if (!place.path.empty() && seen.emplace(place.path, place.name).second)
            known_->places.push_back({place, reader.WaysUp(AbsoluteWidePath(place.path))});
    }
    for (const std::wstring& program : programs) {
        if (!program.empty())
            known_->programs.push_back(reader.WayUp(program).front());
    }
}

clsFolderGuard clsFolderGuard::OfSystem(const std::string& programPath,
                                        const std::string& sourceFolder) {
    std::vector<GuardedPlace> places{
        {Widen(programPath), "this program", Reach::Holding},
        {Widen(sourceFolder), "the folder chosen as Windows source", Reach::Within}};
    if (!sourceFolder.empty()) // which may be a whole drive
        places.push_back({Widen(WithTrailingBackslash(sourceFolder)) + L"I386",
                          "the folder chosen as Windows source", Reach::Within});
    for (const SystemPlace& place : kSystemPlaces)
        places.push_back({SpecialFolderWidePath(place.folder), place.name, place.reach});
    for (const std::wstring& folder : RegisteredShellFolders())
        places.push_back({folder, "one of the system's folders for your files", Reach::Holding});
    std::array<wchar_t, MAX_PATH + 1> temporary{};
    if (GetTempPathW(static_cast<DWORD>(temporary.size()), temporary.data()) != 0)
        places.push_back({temporary.data(), "the temporary folder", Reach::Holding});
    std::vector<std::wstring> programs = ProgramFolders();
    for (const std::wstring& folder : programs)
        places.push_back({folder, "Program Files", Reach::Holding});
    std::ranges::move(DataFolders(), std::back_inserter(programs));
    return clsFolderGuard(places, programs);
}

std::vector<std::wstring> clsFolderGuard::AmongData(const std::wstring& profile,
                                                    std::vector<std::wstring> data) {
    for (std::wstring& folder : data) {
        const std::size_t end = folder.rfind(L'\\');
        if (end != std::wstring::npos && !IsSamePath(folder.substr(0, end), profile))
            folder.resize(end);
    }
    return data;
}

std::string clsFolderGuard::Objection(const std::string& folder) const {
    const auto ways = clsFolderReader().WaysUp(Widen(folder));
    for (const auto& way : ways) {
        if (std::string own = OwnObjection(way); !own.empty() && !way.back().isBeyondRoot)
            return own;
    }
    for (const Known::Place& known : known_->places) {
        if (const char* relation = Relation(ways, known.ways, known.place.reach))
            return std::string(kEmptied) + "but this one " + relation +
                   (std::string_view(relation).ends_with(' ') ? known.place.name : "");
    }
    return {};
}

bool clsFolderGuard::KeepsForeign(const std::string& folder) const {
    const auto ways = clsFolderReader().WaysUp(Widen(folder));
    return std::ranges::any_of(known_->programs,
                               [&](const FolderLevel& program) { return Leads(ways, program); });
}

} // namespace vesk
