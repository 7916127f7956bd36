#include "source/clsDriveScan.h"

#include "base/Failure.h"
#include "base/UniqueHandle.h"
#include "base/modFileVersion.h"
#include "base/modFolderEntries.h"
#include "source/modSourceFolder.h"

#include <windows.h>

#include <cstring>
#include <string_view>
#include <utility>

namespace vesk {

namespace {

constexpr std::string_view kI386 = "I386\\";

/// True when the file carries a version, as every real NTDLL.DLL does.
bool HasFileVersion(const std::string& path) {
    const std::string fixed = FileVersionPart(path, "\\");
    VS_FIXEDFILEINFO version{};
    if (fixed.size() < sizeof version)
        return false;
    std::memcpy(&version, fixed.data(), sizeof version);
    return version.dwFileVersionMS != 0 || version.dwFileVersionLS != 0;
}

bool IsPlainFolder(const WIN32_FIND_DATAA& entry) {
    // A junction may lead back up: what it leads to is searched at its own place.
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           !IsLink(entry.dwFileAttributes, entry.dwReserved0);
}

} // namespace

std::vector<std::string> SearchableDrives(std::uint32_t driveMask) {
    std::vector<std::string> roots;
    for (char letter = 'C'; letter <= 'Z'; ++letter) {
        if ((driveMask >> (letter - 'A') & 1U) != 0)
            roots.push_back(std::string(1, letter) + ":\\");
    }
    return roots;
}

/// One folder on the way down, with the entry that is looked at.
struct clsDriveScan::Level {
    std::string folder; ///< Ends in "\".
    WIN32_FIND_DATAA entry{};
    FindHandle search;
    bool hasEntry;

    explicit Level(std::string path)
        : folder(std::move(path)),
          search(FindFirstFileA((folder + "*.*").c_str(), &entry)),
          hasEntry(static_cast<bool>(search)) {}

    // The case is compared: the folder of a Windows CD is spelled so, its copies elsewhere are not.
    [[nodiscard]] bool IsI386() const { return folder.ends_with(kI386) && IsI386Folder(folder); }
};

void clsDriveScan::Run(const std::vector<std::string>& roots) {
    stopped_ = false;
    for (const std::string& root : roots) {
        if (stopped_)
            return;
        SearchDrive(root);
    }
}

void clsDriveScan::SearchDrive(const std::string& root) {
    std::vector<Level> levels;
    levels.emplace_back(root);
    while (!levels.empty() && !stopped_) {
        if (levels.back().hasEntry) {
            LookAtEntry(levels);
            continue;
        }
        levels.pop_back();
        if (levels.empty())
            return;
        events_.OnFolder(levels.back().folder); // back from a folder in it
        GoOn(levels.back());
    }
}

void clsDriveScan::LookAtEntry(std::vector<Level>& levels) {
    Level& level = levels.back();
    const std::string name = level.entry.cFileName;
    const bool isFolder = (level.entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (name.empty() || name.front() == '.')
        return GoOn(level);
    if (IsPlainFolder(level.entry)) {
        levels.emplace_back(level.folder + name + "\\");
    } else if (isFolder) {
        events_.OnFolder(level.folder);
        GoOn(level);
    } else if (level.IsI386()) {
        ReportFound(level.folder);
        level.hasEntry = false; // the folder's other entries are not looked at
    } else {
        GoOn(level);
    }
}

void clsDriveScan::GoOn(Level& level) {
    events_.OnEntryDone();
    level.hasEntry = FindNextFileA(level.search.Get(), &level.entry) != FALSE;
}

void clsDriveScan::ReportFound(const std::string& i386Folder) {
    source_.valid = true; // before the version is asked for: the flag is for everything found
    if (!HasFileVersion(i386Folder + "NTDLL.DLL"))
        return;
    SourceProduct product;
    try {
        product = ReadSourceProduct(i386Folder);
    } catch (const Failure&) {
        // The find stands, without the name that could not be read; the search goes on.
    }
    events_.OnFound({i386Folder.substr(0, i386Folder.size() - kI386.size()), product.productName,
                     product.servicePackTag});
}

} // namespace vesk
