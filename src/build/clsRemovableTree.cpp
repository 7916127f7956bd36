#include "build/clsRemovableTree.h"

#include "archive/modMemberName.h"
#include "base/clsLinkDetector.h"
#include "base/clsPatience.h"
#include "base/modFile.h"
#include "base/modFolderEntries.h"
#include "base/modSpecialFolder.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "base/modWide.h"
#include "build/clsInstallFolder.h"

#include <windows.h>

#include <cstddef>
#include <unordered_set>
#include <utility>

namespace vesk {

namespace {

/// Removes what a folder holds, the deepest first, without recursion: a tree may be as deep as it
/// likes.
class Remover {
public:
    /// @param lastName a file directly in the folder that is to go last; may be empty
    Remover(const std::string& top, const std::string& lastName,
            const std::function<void()>& meanwhile)
        : top_(Widen(top)),
          last_(lastName.empty() ? std::wstring() : top_ + L"\\" + Widen(lastName)),
          meanwhile_(meanwhile) {}

    std::vector<Failure> Run() {
        std::vector<std::wstring> folders{top_};
        // Each folder's subfolders stand behind it, so the list is walked back to front.
        for (std::size_t i = 0; i < folders.size(); ++i) {
            const std::wstring folder = folders[i];
            const DWORD unread = ForEachEntry(folder, [&](const FolderEntry& entry) {
                const std::wstring path = folder + L"\\" + entry.name;
                if (entry.IsPlainFolder())
                    folders.push_back(path);
                else if (path != last_)
                    RemoveEntry(folder, entry);
            });
            if (unread != ERROR_SUCCESS)
                Remember(folder, unread);
        }
        while (folders.size() > 1) {
            RemoveEmptyFolder(folders.back());
            folders.pop_back();
        }
        RemoveLast();
        return std::move(failures_);
    }

private:
    /// The file that goes last goes only when nothing but it is left.
    void RemoveLast() {
        const DWORD attributes = GetFileAttributesW(LongPath(last_).c_str());
        if (failures_.empty() && !last_.empty() && attributes != INVALID_FILE_ATTRIBUTES)
            RemoveEntry(top_, {last_.substr(top_.size() + 1), L"", attributes, 0});
        RemoveEmptyFolder(top_);
        AwaitRemoval(LongPath(top_)); // which is about to be made anew
    }

    void RemoveEntry(const std::wstring& folder, const FolderEntry& entry) {
        const bool isPlain = !entry.IsFolder() && !entry.IsLink();
        if (!isPlain || !links_.DeleteAtOnce(folder, entry.name))
            RemoveWithCare(folder, entry);
        constexpr int kBetweenEvents = 64;
        if (meanwhile_ && ++removed_ % kBetweenEvents == 0)
            meanwhile_();
    }

    void RemoveWithCare(const std::wstring& folder, const FolderEntry& entry) {
        const std::wstring path = folder + L"\\" + entry.name;
        if (!entry.IsFolder() && !entry.IsLink() &&
            links_.IsFileLink(folder, entry.name, entry.attributes))
            return Remember(path, ERROR_CANT_RESOLVE_FILENAME);
        // A folder here is a link: it goes itself, and what it leads to is not looked at.
        if (!TryPatiently(
                [&] { return Delete(path, entry.IsFolder() ? RemoveDirectoryW : DeleteFileW); }))
            Remember(path, GetLastError());
    }

    void RemoveEmptyFolder(const std::wstring& path) {
        const auto remove = [&] { return Delete(path, RemoveDirectoryW); };
        const bool holds = holding_.contains(path);
        // One that seems empty may hold what others have open, such as the folders that Explorer
        // shows: those go when they are closed.
        if (holds ? remove() : TryPatiently(remove))
            return;
        const DWORD error = GetLastError();
        // What is left in it was reported already, and is why the folders above are left as well.
        if (error == ERROR_DIR_NOT_EMPTY && holds)
            holding_.insert(ParentOf(path));
        else
            Remember(path, error);
    }

    static std::wstring ParentOf(const std::wstring& path) {
        return path.substr(0, path.rfind(L'\\'));
    }

    static bool Delete(const std::wstring& path, BOOL(WINAPI* function)(LPCWSTR)) {
        const std::wstring name = LongPath(path);
        if (function(name.c_str()) != FALSE)
            return true;
        if (GetLastError() != ERROR_ACCESS_DENIED)
            return false;
        const DWORD before = GetFileAttributesW(name.c_str());
        SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (function(name.c_str()) != FALSE)
            return true;
        const DWORD error = GetLastError();
        SetFileAttributesW(name.c_str(), before); // what stays is as it was
        SetLastError(error);
        return false;
    }

    void Remember(const std::wstring& path, DWORD error) {
        const std::string shown = Narrowed(path);
        const std::string reason = SystemErrorText(error);
        holding_.insert(ParentOf(path));
        failures_.emplace_back(error, shown, "cannot delete " + shown + ": " + reason, reason);
    }

    std::wstring top_;
    std::wstring last_;
    const std::function<void()>& meanwhile_;
    std::vector<Failure> failures_;
    clsLinkDetector links_;
    std::unordered_set<std::wstring> holding_; ///< Folders with something that could not go.
    std::size_t removed_ = 0;
};

} // namespace

clsRemovableTree::clsRemovableTree(std::string path, std::function<std::string()> objection)
    : path_(std::move(path)), objection_(std::move(objection)) {}

clsRemovableTree clsRemovableTree::Of(const clsInstallFolder& folder) {
    clsRemovableTree tree(folder.Path(), [folder] { return folder.Objection(); });
    tree.lastName_ = clsInstallFolder::kMarkName;
    return tree;
}

clsRemovableTree clsRemovableTree::Below(const clsInstallFolder& folder,
                                         const std::string& relative) {
    const auto path =
        PathInside(folder.Path(), relative.substr(relative.starts_with('\\') ? 1 : 0));
    if (!path)
        ThrowSystemError(ERROR_INVALID_NAME, "cannot delete", folder.Path() + relative);
    // Whether the tree itself may be emptied was asked before it was made.
    return {*path, [top = ParentOf(folder.Path()), path = *path] {
                return HasLinkBelow(top, path) ? std::string("its path leads through a link")
                                               : std::string();
            }};
}

std::string clsRemovableTree::StartMenuPath() {
    return SpecialFolderPath(SpecialFolder::CommonPrograms) + "\\Vesk Builder";
}

clsRemovableTree clsRemovableTree::StartMenuFolder() {
    const std::string path = StartMenuPath();
    const std::string programs = ParentOf(path);
    if (programs.empty())
        throw Failure(ERROR_PATH_NOT_FOUND, "StartMenuFolder",
                      "this system has no start menu for all users");
    return {path, [programs, path] {
                return HasLinkBelow(programs, path) ? std::string("it is a link") : std::string();
            }};
}

std::vector<Failure> clsRemovableTree::Remove(const std::function<void()>& meanwhile) const {
    if (const std::string objection = objection_(); !objection.empty())
        return {Failure(ERROR_ACCESS_DENIED, path_, objection)};
    const PathState state = StateOf(path_);
    if (state == PathState::Nothing || state == PathState::File)
        return {Failure(ERROR_PATH_NOT_FOUND, path_, SystemErrorText(ERROR_PATH_NOT_FOUND))};
    return Remover(path_, lastName_, meanwhile).Run();
}

} // namespace vesk
