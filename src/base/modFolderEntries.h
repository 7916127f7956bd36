#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace vesk {

/// Whether something is a junction or symbolic link, or stands in for another place in any other
/// way. What OneDrive keeps, what is deduplicated or compressed by the system and the like has the
/// same attribute, but is where it seems to be. A tag that is not known (0) is taken for a link's.
/// @param attributes FILE_ATTRIBUTE_ bits @param tag what the system lists with that attribute
bool IsLink(std::uint32_t attributes, std::uint32_t tag);

/// The same of a path; the system is asked for its tag where it has that attribute.
/// @param path as the system's functions take it @param attributes its own, which were read
bool IsLink(const std::wstring& path, std::uint32_t attributes);

/// One entry of a folder, under the name that the file system has for it.
struct FolderEntry {
    std::wstring name;
    std::wstring shortName;       ///< Another name of plain characters; empty when there is none.
    std::uint32_t attributes = 0; ///< FILE_ATTRIBUTE_ bits.
    std::uint64_t size = 0;       ///< Bytes; 0 for a folder.
    std::uint32_t tag = 0;        ///< As IsLink takes it.

    /// A folder, or a link to one.
    [[nodiscard]] bool IsFolder() const;
    /// See vesk::IsLink.
    [[nodiscard]] bool IsLink() const;

    /// A folder that can be entered without being led to another place.
    [[nodiscard]] bool IsPlainFolder() const { return IsFolder() && !IsLink(); }
};

/// Visits everything in a folder but "." and "..", in the file system's order. The path may be
/// longer than MAX_PATH.
/// @param folder absolute path
/// @param pattern as for the system's file search
/// @return the system's error code when the folder could not be read; 0 otherwise
std::uint32_t ForEachEntry(const std::wstring& folder,
                           const std::function<void(const FolderEntry&)>& visit,
                           const std::wstring& pattern = L"*");

} // namespace vesk
