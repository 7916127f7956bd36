#include "build/modFileOperations.h"

#include "archive/modMemberName.h"
#include "base/modFile.h"
#include "base/modFolderEntries.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "base/modWide.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

namespace vesk {

namespace {

/// A name by which the ANSI functions find an entry: its own, or its short one.
std::optional<std::wstring> UsableName(const FolderEntry& entry) {
    if (NarrowedExactly(entry.name))
        return entry.name;
    if (!entry.shortName.empty() && NarrowedExactly(entry.shortName))
        return entry.shortName;
    return std::nullopt;
}

/// One folder: its own matches into `found`, its subfolders, the last first, onto `folders`.
void SearchFolder(const std::wstring& folder, const std::wstring& pattern, const std::string& what,
                  FoundFiles& found, std::vector<std::wstring>& folders) {
    std::uint32_t unread = ForEachEntry(
        folder,
        [&](const FolderEntry& entry) {
            if (entry.size == 0)
                return;
            const auto name = UsableName(entry);
            // A similar path, of a folder above it that has no such name, may be another file's.
            if (const auto path = name ? NarrowedExactly(folder + *name) : std::nullopt)
                found.paths.push_back(*path);
            else
                found.problems.push_back({Narrowed(folder + entry.name), what,
                                          "the system's code page cannot hold its name"});
        },
        pattern);
    const std::size_t first = folders.size();
    // A link is not entered: what lies behind it is not part of the build tree.
    const std::uint32_t unlisted = ForEachEntry(folder, [&](const FolderEntry& entry) {
        if (entry.IsPlainFolder())
            folders.push_back(folder + UsableName(entry).value_or(entry.name) + L"\\");
    });
    if (unlisted != ERROR_SUCCESS)
        unread = unlisted;
    if (unread != ERROR_SUCCESS && unread != ERROR_PATH_NOT_FOUND)
        found.problems.push_back({Narrowed(folder), what, AsReason(SystemErrorText(unread))});
    std::reverse(folders.begin() + static_cast<std::ptrdiff_t>(first), folders.end());
}

} // namespace

bool IsInTree(const clsBuildContext& context, const std::string& path) {
    const std::string& top = context.InstallFolder();
    return path == top ||
           (StartsWithNoCase(path, top + "\\") &&
            PathInside(top, std::string_view(path).substr(top.size() + 1)).has_value());
}

void RequireInTree(const clsBuildContext& context, const std::string& path) {
    if (!IsInTree(context, path))
        throw Failure(ERROR_INVALID_NAME, "RequireInTree",
                      "the folder name in the catalogue is not one inside the build tree");
    if (HasLinkBelow(ParentOf(context.InstallFolder()), path))
        throw Failure(ERROR_CANT_RESOLVE_FILENAME, "RequireInTree",
                      "its path leads through a link");
    if (FileExists(path) && !PlainFileExists(path))
        throw Failure(ERROR_CANT_RESOLVE_FILENAME, "RequireInTree", "there is a link in its place");
}

void DeleteFileLogged(const clsBuildContext& context, const std::string& path) {
    context.Status("Deleting file");
    context.Log("Deleting File: " + path);
    RemoveFile(path);
}

bool DeleteFolderLogged(const clsBuildContext& context, const clsRemovableTree& tree) {
    context.Status("Deleting folder");
    context.Log("Deleting Folder: " + tree.Path());
    bool removed = true;
    for (const Failure& failure : tree.Remove([&] { context.frontEnd.LetEventsRun(); })) {
        const bool isMissing =
            failure.number == ERROR_PATH_NOT_FOUND && failure.source == tree.Path();
        if (isMissing && StateOf(tree.Path()) == PathState::Nothing)
            continue; // it was not there: then it is as it should be
        removed = false;
        context.report({failure.source, "not removed", ReasonOf(failure)});
    }
    return removed;
}

void CreateFolderLogged(const clsBuildContext& context, const std::string& path) {
    context.Log("Creating Directory: " + path);
    RequireInTree(context, path);
    CreateFolderPath(path);
}

void LogIndented(const clsBuildContext& context, const std::string& text) {
    context.Log(text + "  ");
}

FoundFiles FindFiles(const std::string& folder, std::string& pattern, const std::string& what,
                     const std::function<void()>& meanwhile) {
    if (pattern.empty())
        pattern = "*.inf";
    FoundFiles found;
    const std::wstring widePattern = Widen(pattern);
    std::vector<std::wstring> folders{Widen(folder)};
    while (!folders.empty()) {
        const std::wstring current = std::move(folders.back());
        folders.pop_back();
        SearchFolder(current, widePattern, what, found, folders);
        if (meanwhile)
            meanwhile();
    }
    return found;
}

} // namespace vesk
