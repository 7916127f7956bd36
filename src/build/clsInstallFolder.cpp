#include "build/clsInstallFolder.h"

#include "archive/modMemberName.h"
#include "base/CodePage.h"
#include "base/Failure.h"
#include "base/UniqueHandle.h"
#include "base/modFile.h"
#include "base/modFolderEntries.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "base/modWide.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace vesk {

namespace {

/// A folder that holds one of these was made by a build.
constexpr std::array kTraces = {"vesklive.ini", "pebuilder.exe", "input.inf"};

/// Room for "\Plugin\" and what PE Builder keeps below it, within the system's 260 characters.
constexpr std::size_t kLongestPath = 200;

bool HasTrace(const std::string& folder) {
    return std::ranges::any_of(kTraces,
                               [&](const char* name) { return FileExists(folder + "\\" + name); });
}

bool HasControlCharacter(const std::string& text) {
    return std::ranges::any_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x20; });
}

std::string WithBackslashes(std::string text) {
    std::ranges::replace(text, '/', '\\');
    return text;
}

/// Refuses texts that the system would read in a way of its own.
void RefuseSpelling(const std::string& text) {
    const std::string path = WithBackslashes(text);
    if (path.empty())
        throw FolderRefused("No installation folder is given.");
    if (HasControlCharacter(path))
        throw FolderRefused("The installation folder's name holds a control character.");
    if (path.starts_with(R"(\\?\)") || path.starts_with(R"(\\.\)") || path.starts_with(R"(\??\)"))
        throw FolderRefused("The installation folder must be named by a drive or a share, not as a "
                            "device: " +
                            text);
    const bool hasDrive = path.size() >= 2 && path[1] == ':';
    if (hasDrive && path.size() > 2 && path[2] != '\\')
        throw FolderRefused(
            "The installation folder must not depend on a drive's current folder: " + text +
            " (write " + path.substr(0, 2) + "\\" + path.substr(2) + ")");
}

/// "C:\" or "\\server\share\".
std::size_t RootLength(const std::string& text) {
    const std::string path = WithoutTrailBytes(text);
    constexpr std::size_t kDriveRoot = 3;
    if (!path.starts_with("\\\\"))
        return std::min(kDriveRoot, path.size());
    const std::size_t share = path.find('\\', 2);
    return share == std::string::npos ? path.size()
                                      : std::min(path.find('\\', share + 1), path.size() - 1) + 1;
}

void RefuseRoot(const std::string& path, const std::string& text) {
    const std::string root = WithTrailingBackslash(path.substr(0, RootLength(path)));
    if (root.ends_with("$\\"))
        throw FolderRefused("The installation folder must be named by its drive, not by an "
                            "administrative share: " +
                            text);
    if (path.size() <= root.size())
        throw FolderRefused("The installation folder is emptied before a build, so it cannot be a "
                            "whole drive: " +
                            text);
    const UINT type = GetDriveTypeA(root.c_str());
    if (type == DRIVE_CDROM)
        throw FolderRefused("The installation folder cannot be on a CD: " + text);
    if (type == DRIVE_NO_ROOT_DIR || !FolderExists(root))
        throw FolderRefused(root.starts_with("\\\\")
                                ? "The share cannot be reached: " + text
                                : "There is no such drive: " + text +
                                      " (one of the network must be written as "
                                      "\\\\server\\folder)");
}

void RefuseLength(std::size_t length) {
    if (length > kLongestPath)
        throw FolderRefused("The installation folder's path is too long: it has " +
                            std::to_string(length) + " characters, and files in it need room; " +
                            std::to_string(kLongestPath) + " are allowed.");
}

std::string CheckedPath(const std::string& typed) {
    const std::string text = TrimBlanks(typed);
    RefuseSpelling(text);
    std::string path;
    try {
        path = AbsolutePath(text);
    } catch (const Failure&) {
        RefuseLength(text.size());
        throw FolderRefused("The installation folder is not a valid path: " + text);
    }
    RefuseLength(path.size());
    if (path.starts_with(R"(\\.\)"))
        throw FolderRefused("The installation folder's name is a device name: " + text);
    RefuseRoot(path, text);
    const std::size_t root = RootLength(path);
    path = path.substr(0, root) + WithoutTrailingBackslash(path.substr(root));
    if (path.size() == root)
        RefuseRoot(path.substr(0, root), text);
    if (!PathInside(path.substr(0, root), path.substr(root)))
        throw FolderRefused("The installation folder's name is not a valid folder name: " + text);
    return path;
}

/// Counts the files below a folder without entering links.
std::size_t CountFiles(const std::string& top, std::size_t most) {
    std::size_t count = 0;
    std::vector<std::wstring> folders{Widen(top)};
    while (!folders.empty() && count < most) {
        const std::wstring folder = std::move(folders.back());
        folders.pop_back();
        ForEachEntry(folder, [&](const FolderEntry& entry) {
            if (entry.IsPlainFolder())
                folders.push_back(folder + L"\\" + entry.name);
            else
                ++count;
        });
    }
    return std::min(count, most);
}

} // namespace

std::string FolderContent::ForeignWords() const {
    if (unreadable)
        return "what it holds cannot be determined";
    const std::string number = std::to_string(files);
    if (files == 0)
        return "it holds folders that no build made";
    return "it holds " + std::string(files == kMostCounted ? "at least " : "") + number +
           (files == 1 ? " file that no build made" : " files that no build made");
}

clsInstallFolder::clsInstallFolder(const std::string& text, clsFolderGuard guard)
    : path_(CheckedPath(text)), guard_(std::move(guard)) {
    if (const std::string objection = Objection(); !objection.empty())
        throw FolderRefused(objection);
}

std::string clsInstallFolder::Objection() const {
    const std::string objection = guard_.Objection(path_);
    return objection.empty() ? objection : objection + ": " + path_;
}

std::string clsInstallFolder::WhyKept(const FolderContent& content) const {
    if (content.kind != FolderContent::Kind::Foreign || !guard_.KeepsForeign(path_))
        return {};
    return content.ForeignWords() +
           "; among installed programs only a folder that a build made is emptied";
}

std::optional<FolderIdentity> clsInstallFolder::Identity() const {
    return clsFolderReader().WayUp(Widen(path_)).front().identity;
}

FolderContent clsInstallFolder::Content() const {
    using Kind = FolderContent::Kind;
    const PathState state = StateOf(path_);
    if (state == PathState::Unknown)
        return {Kind::Foreign, 0, true};
    if (state != PathState::Folder)
        return {};
    if (PlainFileExists(path_ + "\\" + kMarkName) || HasTrace(path_))
        return {Kind::EarlierBuild, 0};
    bool empty = true;
    if (ForEachEntry(Widen(path_), [&](const FolderEntry&) { empty = false; }) != ERROR_SUCCESS)
        return {Kind::Foreign, 0, true};
    if (empty)
        return {Kind::Empty, 0};
    return {Kind::Foreign, CountFiles(path_, FolderContent::kMostCounted)};
}

void clsInstallFolder::Mark() const {
    if (PlainFileExists(path_ + "\\" + kMarkName))
        return;
    CreateFolderPath(path_);
    if (HasLinkBelow(ParentOf(path_), path_) || FileExists(path_ + "\\" + kMarkName))
        throw Failure(ERROR_CANT_RESOLVE_FILENAME, "Mark", "there is a link in its place");
    WriteCompleteFile(path_ + "\\" + kMarkName, "This tree is being built.\r\n");
}

void clsInstallFolder::Unmark() const {
    const std::string mark = path_ + "\\" + kMarkName;
    DWORD error = ERROR_SUCCESS; // of the first that cannot be looked at
    for (const char* name : kTraces) {
        const PathState state = StateOf(path_ + "\\" + name);
        if (state == PathState::File)
            return RemoveOwnFile(mark);
        if (state == PathState::Unknown && error == ERROR_SUCCESS)
            error = GetLastError();
    }
    if (error != ERROR_SUCCESS)
        ThrowSystemError(error, "cannot look at", path_);
}

} // namespace vesk
