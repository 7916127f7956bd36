#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vesk {

/// One member and what distinguishes its bytes from another's.
struct MemberContent {
    std::size_t number = 0; ///< Its place in the archive's directory.
    std::uint64_t size = 0;
    std::optional<std::uint32_t> crc; ///< CRC-32; unknown where nothing was unpacked.

    /// Whether both are known to have the same bytes, from their sizes and checksums.
    [[nodiscard]] bool HasBytesOf(const MemberContent& other) const {
        return size == other.size && (size == 0 || (crc && crc == other.crc));
    }
};

/// Two members with one name and different bytes, by their numbers.
struct Overwriting {
    std::size_t later = 0;
    std::size_t earlier = 0;
};

/// The names that the members of one archive bring into a target folder, as a tree, compared as the
/// file system compares them. What it remembers grows with the names' length, however deep they
/// lead.
class clsNameTree {
public:
    static constexpr std::size_t kRoot = 0; ///< The target folder itself.

    /// Goes down to a folder.
    /// @param path of the folder @param top how much of it stands for the target folder
    /// @param create called with the path of each folder on the way that is new here
    /// @return the folder's number @throws ArchiveProblem when a member's file is in the path
    std::size_t EnterFolder(std::wstring_view path, std::size_t top,
                            const std::function<void(std::wstring_view path)>& create);

    /// Whether a member with a greater number has brought a file of this name, which is to stay.
    [[nodiscard]] bool IsTakenByLater(std::size_t folder, std::wstring_view name,
                                      std::size_t number) const;

    /// Remembers a member's file. Of two with one name the one with the greater number counts.
    /// @return the two, when the bytes of the other one are lost
    /// @throws ArchiveProblem when a folder has this name
    std::optional<Overwriting> PutFile(std::size_t folder, std::wstring_view name,
                                       const MemberContent& content);

private:
    struct Node {
        bool isFolder;
        MemberContent content; ///< Of a folder only the number, its own.
    };
    using Key = std::pair<std::size_t, std::wstring>;

    std::map<Key, Node> nodes_; // no hash: the names are chosen by strangers
    std::size_t folders_ = 0;
    std::size_t greatest_ = 0; ///< Number of a member whose file was put.
    std::wstring lastPath_;    // neighbours in an archive mostly share their folder
    std::size_t lastFolder_ = kRoot;
};

} // namespace vesk
