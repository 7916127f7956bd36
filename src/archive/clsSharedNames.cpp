#include "archive/clsSharedNames.h"

#include "archive/modMemberPath.h"

#include <algorithm>
#include <string>
#include <utility>

namespace vesk {

namespace {

/// FNV-1a. That strangers can choose names of one hash does not matter: such names are remembered.
class PathHash {
public:
    void Add(wchar_t c) {
        for (const unsigned byte : {c & 0xFFU, static_cast<unsigned>(c) >> 8})
            value_ = (value_ ^ byte) * 16777619;
    }
    [[nodiscard]] std::uint32_t Value() const { return value_; }

private:
    std::uint32_t value_ = 2166136261;
};

} // namespace

void clsSharedNames::Add(std::wstring_view path) {
    const std::wstring folded = FoldedName(path);
    const std::size_t folderEnd = std::min(folded.rfind(L'\\'), folded.size());
    const bool isFolderKnown = folded.compare(0, folderEnd, lastFolder_) == 0;
    PathHash hash;
    for (std::size_t i = 0; i < folded.size(); ++i) {
        if (folded[i] == L'\\' && i != 0 && !isFolderKnown)
            hashes_.push_back(hash.Value());
        hash.Add(folded[i]);
    }
    hashes_.push_back(hash.Value());
    lastFolder_ = folded.substr(0, folderEnd);
}

void clsSharedNames::Finish() {
    std::ranges::sort(hashes_);
    std::vector<std::uint32_t> shared;
    for (std::size_t i = 1; i < hashes_.size(); ++i)
        if (hashes_[i] == hashes_[i - 1] && (shared.empty() || shared.back() != hashes_[i]))
            shared.push_back(hashes_[i]);
    hashes_ = std::move(shared);
}

bool clsSharedNames::MayBeShared(std::wstring_view path) const {
    PathHash hash;
    for (const wchar_t c : FoldedName(path))
        hash.Add(c);
    return std::ranges::binary_search(hashes_, hash.Value());
}

} // namespace vesk
