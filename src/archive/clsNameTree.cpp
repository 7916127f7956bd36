#include "archive/clsNameTree.h"

#include "archive/modZipDirectory.h"

#include <windows.h>

#include <algorithm>

namespace vesk {

namespace {

std::wstring Folded(std::wstring_view name) {
    std::wstring folded(name);
    CharUpperBuffW(folded.data(), static_cast<DWORD>(folded.size()));
    return folded;
}

} // namespace

std::size_t clsNameTree::EnterFolder(std::wstring_view path, std::size_t top,
                                     const std::function<void(std::wstring_view path)>& create) {
    if (!lastPath_.empty() && path == lastPath_)
        return lastFolder_;
    std::size_t folder = kRoot;
    for (std::size_t end = top; end < path.size();) {
        const std::size_t from = end + 1;
        end = std::min(path.find(L'\\', from), path.size());
        Key key(folder, Folded(path.substr(from, end - from)));
        auto node = nodes_.find(key);
        if (node == nodes_.end()) {
            create(path.substr(0, end));
            node = nodes_.emplace(std::move(key), Node{true, ++folders_}).first;
        }
        if (!node->second.isFolder)
            throw ZipProblem("a file stands on the way to it");
        folder = node->second.number;
    }
    lastPath_ = path;
    lastFolder_ = folder;
    return folder;
}

std::optional<std::size_t> clsNameTree::PutFile(std::size_t folder, std::wstring_view name,
                                                std::size_t member) {
    const auto [node, isNew] = nodes_.try_emplace(Key(folder, Folded(name)), Node{false, member});
    if (isNew)
        return std::nullopt;
    if (node->second.isFolder)
        throw ZipProblem("a folder stands in its place");
    return std::exchange(node->second.number, member);
}

} // namespace vesk
