#pragma once

#include "TestFolder.h"
#include "archive/ExtractionOutcome.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

/// What an extraction left behind, and what it told.
namespace vesk::test {

using Tree = std::map<std::wstring, std::string>; ///< What files hold; names of folders end in "\".

inline std::string ContentOf(const std::filesystem::path& path, std::uint64_t size) {
    std::string text(static_cast<std::size_t>(size), '\0');
    std::ifstream file(path, std::ios::binary);
    return file.read(text.data(), static_cast<std::streamsize>(size)) ? text : "cannot be read";
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

inline WIN32_FILE_ATTRIBUTE_DATA DataOf(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    REQUIRE(GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data) != 0);
    return data;
}

inline std::string Lines(const std::vector<MemberFailure>& failures) {
    std::string lines;
    for (const MemberFailure& failure : failures)
        lines += failure.member + ": " + failure.what + ", " + failure.reason + "\n";
    return lines;
}

/// An archive, and the folder "out" that it is extracted into.
struct Extracting {
    TestFolder folder;
    std::string path;
    std::string target = folder / "out";

    Extracting(const std::string& name, const std::string& bytes)
        : path(folder.Write(name, bytes)) {}
    [[nodiscard]] std::string operator/(const std::string& name) const {
        return target + "\\" + name;
    }
};

} // namespace vesk::test
