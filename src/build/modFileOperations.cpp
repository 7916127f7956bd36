#include "build/modFileOperations.h"

#include "base/FolderEntries.h"
#include "base/modFile.h"
#include "base/modWide.h"

#include <windows.h>

#include <algorithm>

namespace vesk {

namespace {

/// A path that the ANSI functions find the file by: its own, or one by short names.
std::optional<std::string> UsablePath(const std::wstring& path) {
    if (auto exact = NarrowedExactly(path))
        return exact;
    std::wstring shortPath(32768, L'\0'); // the system's own limit
    shortPath.resize(GetShortPathNameW(LongPath(path).c_str(), shortPath.data(),
                                       static_cast<DWORD>(shortPath.size())));
    return shortPath.empty() ? std::nullopt : NarrowedExactly(WithoutLongPrefix(shortPath));
}

/// One folder: its own matches into `found`, its subfolders, the last first, onto `folders`.
void SearchFolder(const std::wstring& folder, const std::wstring& pattern, FoundFiles& found,
                  std::vector<std::wstring>& folders) {
    ForEachEntry(
        folder,
        [&](const FolderEntry& entry) {
            if (entry.size == 0)
                return;
            const std::wstring path = folder + entry.name;
            if (auto usable = UsablePath(path))
                found.paths.push_back(std::move(*usable));
            else
                found.unreachable.push_back(Narrowed(path));
        },
        pattern);
    const std::size_t first = folders.size();
    // A link is not entered: what lies behind it is not part of the build tree.
    const std::uint32_t unread = ForEachEntry(folder, [&](const FolderEntry& entry) {
        if (entry.IsPlainFolder())
            folders.push_back(folder + entry.name + L"\\");
    });
    if (unread != ERROR_SUCCESS && unread != ERROR_PATH_NOT_FOUND)
        found.unreachable.push_back(Narrowed(folder));
    std::reverse(folders.begin() + static_cast<std::ptrdiff_t>(first), folders.end());
}

} // namespace

void DeleteFileLogged(const BuildContext& context, const std::string& path) {
    context.Status("Deleting file");
    context.Log("Deleting File: " + path);
    RemoveFile(path);
}

bool DeleteFolderLogged(const BuildContext& context, const clsRemovableTree& tree) {
    context.Status("Deleting folder");
    context.Log("Deleting Folder: " + tree.Path());
    bool removed = true;
    for (const Failure& failure : tree.Remove([&] { context.frontEnd.LetEventsRun(); })) {
        if (failure.number == ERROR_PATH_NOT_FOUND && failure.source == tree.Path())
            continue; // it was not there: then it is as it should be
        removed = false;
        context.report({failure.source, "not removed", ReasonOf(failure)});
    }
    return removed;
}

void CreateFolderLogged(const BuildContext& context, const std::string& path) {
    context.Log("Creating Directory: " + path);
    CreateFolderPath(path);
}

void LogIndented(const BuildContext& context, const std::string& text) {
    context.Log(text + "  ");
}

FoundFiles FindFiles(const std::string& folder, std::string& pattern) {
    if (pattern.empty())
        pattern = "*.inf";
    FoundFiles found;
    const std::wstring widePattern = Widen(pattern);
    std::vector<std::wstring> folders{Widen(folder)};
    while (!folders.empty()) {
        const std::wstring current = std::move(folders.back());
        folders.pop_back();
        SearchFolder(current, widePattern, found, folders);
    }
    return found;
}

} // namespace vesk
