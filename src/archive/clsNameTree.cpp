#include "archive/clsNameTree.h"

#include "archive/ArchiveProblem.h"
#include "archive/modMemberPath.h"

#include <algorithm>

namespace vesk {

std::size_t clsNameTree::EnterFolder(std::wstring_view path, std::size_t top,
                                     const std::function<void(std::wstring_view path)>& create) {
    if (!lastPath_.empty() && path == lastPath_)
        return lastFolder_;
    std::size_t folder = kRoot;
    for (std::size_t end = top; end < path.size();) {
        const std::size_t from = end + 1;
        end = std::min(path.find(L'\\', from), path.size());
        Key key(folder, FoldedName(path.substr(from, end - from)));
        auto node = nodes_.find(key);
        if (node == nodes_.end()) {
            create(path.substr(0, end));
            node =
                nodes_.emplace(std::move(key), Node{true, MemberContent{++folders_, 0, {}}}).first;
        }
        if (!node->second.isFolder)
            throw ArchiveProblem("its path leads through a file");
        folder = node->second.content.number;
    }
    lastPath_ = path;
    lastFolder_ = folder;
    return folder;
}

bool clsNameTree::IsTakenByLater(std::size_t folder, std::wstring_view name,
                                 std::size_t number) const {
    if (number > greatest_) // as nearly always: members mostly come in their order
        return false;
    const auto node = nodes_.find(Key(folder, FoldedName(name)));
    return node != nodes_.end() && !node->second.isFolder && node->second.content.number > number;
}

std::optional<Overwriting> clsNameTree::PutFile(std::size_t folder, std::wstring_view name,
                                                const MemberContent& content) {
    greatest_ = std::max(greatest_, content.number);
    const auto [node, isNew] =
        nodes_.try_emplace(Key(folder, FoldedName(name)), Node{false, content});
    if (isNew)
        return std::nullopt;
    if (node->second.isFolder)
        throw ArchiveProblem("there is a folder in its place");
    MemberContent& standing = node->second.content;
    const Overwriting both{std::max(content.number, standing.number),
                           std::min(content.number, standing.number)};
    const bool isLost = !content.HasBytesOf(standing);
    if (content.number > standing.number)
        standing = content;
    return isLost ? std::optional(both) : std::nullopt;
}

} // namespace vesk
