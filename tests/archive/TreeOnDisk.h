#pragma once

#include "TestFolder.h"
#include "archive/ExtractionOutcome.h"

#include <map>
#include <string>
#include <vector>

/// What an extraction left behind, and what it told.
namespace vesk::test {

using Tree = std::map<std::wstring, std::string>; ///< What files hold; names of folders end in "\".

inline std::string ContentOf(const std::wstring& path, std::uint64_t size) {
    const FileHandle file(
        CreateFileW(path.c_str(), GENERIC_READ, 7, nullptr, OPEN_EXISTING, 0, nullptr));
    std::string text(static_cast<std::size_t>(size), '\0');
    DWORD read = 0;
    if (!file || ReadFile(file.Get(), text.data(), static_cast<DWORD>(size), &read, nullptr) == 0)
        return "cannot be read";
    return text.substr(0, read);
}

inline Tree TreeIn(const std::string& folder) {
    Tree tree;
    std::vector<std::wstring> folders{L""};
    for (std::size_t i = 0; i < folders.size(); ++i)
        ForEachEntry(LongPath(folder) + L"\\" + folders[i],
                     [&, below = folders[i]](const FolderEntry& entry) {
                         const std::wstring path = below + entry.name;
                         if (entry.IsFolder())
                             tree[folders.emplace_back(path + L"\\")] = "";
                         else
                             tree[path] = ContentOf(LongPath(folder) + L"\\" + path, entry.size);
                     });
    return tree;
}

/// The same as "name=text|...", in the order of the names.
inline std::string ListedIn(const std::string& folder) {
    std::string list;
    for (const auto& [path, text] : TreeIn(folder))
        list += (list.empty() ? "" : "|") + Narrowed(path) + "=" + text;
    return list;
}

inline std::string Lines(const std::vector<MemberFailure>& failures) {
    std::string lines;
    for (const MemberFailure& failure : failures)
        lines += failure.member + ": " + failure.what + ", " + failure.reason + "\n";
    return lines;
}

} // namespace vesk::test
