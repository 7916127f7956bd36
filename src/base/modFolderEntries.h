#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace vesk {

/// One entry of a folder, under the name that the file system has for it.
struct FolderEntry {
    std::wstring name;
    std::wstring shortName;       ///< Another name of plain characters; empty when there is none.
    std::uint32_t attributes = 0; ///< FILE_ATTRIBUTE_ bits.
    std::uint64_t size = 0;       ///< Bytes; 0 for a folder.

    /// A folder, or a link to one.
    [[nodiscard]] bool IsFolder() const;
    /// A junction, a symbolic link, or anything else that stands in for another place.
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
