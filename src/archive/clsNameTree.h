#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vesk {

/// The names that the members of one archive bring into a target folder, as a tree, compared as the
/// file system compares them. What it remembers grows with the names' length, however deep they
/// lead.
class clsNameTree {
public:
    static constexpr std::size_t kRoot = 0; ///< The target folder itself.

    /// Goes down to a folder.
    /// @param path of the folder @param top how much of it stands for the target folder
    /// @param create called with the path of each folder on the way that is new here
    /// @return the folder's number @throws ZipProblem when a member's file stands on the way
    std::size_t EnterFolder(std::wstring_view path, std::size_t top,
                            const std::function<void(std::wstring_view path)>& create);

    /// Remembers a member's file.
    /// @return the member whose file had this name before
    /// @throws ZipProblem when a folder has this name
    std::optional<std::size_t> PutFile(std::size_t folder, std::wstring_view name,
                                       std::size_t member);

private:
    struct Node {
        bool isFolder;
        std::size_t number; ///< The folder's own, or that of the file's member.
    };
    using Key = std::pair<std::size_t, std::wstring>;

    std::map<Key, Node> nodes_; // no hash: the names are chosen by strangers
    std::size_t folders_ = 0;
    std::wstring lastPath_; // neighbours in an archive mostly share their folder
    std::size_t lastFolder_ = kRoot;
};

} // namespace vesk
