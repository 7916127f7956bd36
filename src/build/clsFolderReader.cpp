#include "build/clsFolderReader.h"

#include "base/UniqueHandle.h"
#include "base/modRealPath.h"
#include "base/modSystemLibrary.h"
#include "base/modWide.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace vesk {

namespace {

/// @param name as the system's functions take it
FolderLevel Read(const std::wstring& name) {
    FolderLevel level{name, GetFileAttributesW(name.c_str()), {}, false};
    const FileHandle folder(
        CreateFileW(name.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION info{};
    // A file system that has no numbers says 0 of every folder, which would make them all the same.
    if (folder && GetFileInformationByHandle(folder.Get(), &info) != FALSE &&
        (info.nFileIndexHigh != 0 || info.nFileIndexLow != 0))
        level.identity = {info.dwVolumeSerialNumber,
                          std::uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow,
                          std::uint64_t{info.ftCreationTime.dwHighDateTime} << 32 |
                              info.ftCreationTime.dwLowDateTime};
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

void FreeOutsideName(char* name) {
    HeapFree(GetProcessHeap(), 0, name);
}

/// Where drives are folders of another system (Wine), a drive's root lies in something that no path
/// of ours reaches. The other system's own names do.
std::vector<FolderLevel> ClimbOutside(const std::wstring& root) {
    using Function = char*(CDECL*)(LPCWSTR);
    static const auto function =
        LoadedFunction<Function>("kernel32.dll", "wine_get_unix_file_name");
    std::vector<FolderLevel> levels;
    const UniqueHandle<FreeOutsideName, char*> outside(
        function == nullptr ? nullptr : function(root.c_str()));
    if (!outside)
        return levels;
    constexpr int kMostLevels = 256;
    std::wstring name = L"\\\\?\\unix" + Widen(outside.Get());
    for (int i = 0; i < kMostLevels; ++i, name += L"/..") {
        FolderLevel level = Read(name);
        level.isBeyondRoot = true;
        if (!level.identity || (!levels.empty() && level.identity == levels.back().identity))
            break; // above the top lies the top itself
        levels.push_back(std::move(level));
    }
    return levels;
}

} // namespace

const FolderLevel& clsFolderReader::LevelOf(const std::wstring& path) {
    const auto known = levels_.find(path);
    if (known != levels_.end())
        return known->second;
    FolderLevel level = Read(LongPath(path));
    level.path = path;
    return levels_.emplace(path, std::move(level)).first->second;
}

const std::vector<FolderLevel>& clsFolderReader::AboveRoot(const std::wstring& root) {
    const auto known = aboveRoots_.find(root);
    return known != aboveRoots_.end() ? known->second
                                      : aboveRoots_.emplace(root, ClimbOutside(root)).first->second;
}

std::vector<FolderLevel> clsFolderReader::WayUp(const std::wstring& folder) {
    std::wstring path = folder;
    const std::size_t root = RootLength(path);
    while (path.size() > root && path.back() == L'\\')
        path.pop_back();
    std::vector<FolderLevel> levels;
    for (;;) {
        levels.push_back(LevelOf(path));
        if (path.size() <= root)
            return levels;
        path.resize(std::max(path.rfind(L'\\'), root));
    }
}

std::vector<std::vector<FolderLevel>> clsFolderReader::WaysUp(const std::wstring& folder) {
    std::vector<std::vector<FolderLevel>> ways{WayUp(folder)};
    const std::wstring real = RealPath(ways[0].front().path);
    if (!IsSamePath(real, ways[0].front().path))
        ways.push_back(WayUp(real));
    std::vector<FolderLevel> beyond = ways.back();
    const std::vector<FolderLevel>& above = AboveRoot(beyond.back().path);
    beyond.insert(beyond.end(), above.begin(), above.end());
    if (!above.empty())
        ways.push_back(std::move(beyond));
    return ways;
}

bool IsSameFolder(const FolderLevel& left, const FolderLevel& right) {
    return (left.identity && left.identity == right.identity) || IsSamePath(left.path, right.path);
}

} // namespace vesk
