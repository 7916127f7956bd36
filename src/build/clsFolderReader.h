#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// Folders compared by what the system opens under their names: another spelling, a short name, a
/// drive that stands for a folder, or a link does not make two of one.
namespace vesk {

/// What the system opened.
struct FolderIdentity {
    std::uint32_t volume = 0;
    std::uint64_t index = 0;
    std::uint64_t created = 0;

    /// A drive that stands for a folder may have another number than the drive that the folder is
    /// on. Two folders of different volumes that agree in the rest are taken for one, which harms
    /// nobody.
    bool operator==(const FolderIdentity& other) const {
        return index == other.index && (volume == other.volume || created == other.created);
    }
};

/// One folder on the way down from a volume's root.
struct FolderLevel {
    std::wstring path;
    std::uint32_t attributes = 0xFFFFFFFF;  ///< Of a link: the link's own. All ones: missing.
    std::optional<FolderIdentity> identity; ///< Of a link: of what it leads to. Not all have one.

    bool isBeyondRoot = false; ///< Above a drive's root, where no path of ours leads.

    /// Whether there is nothing of this name, or the system does not tell.
    [[nodiscard]] bool IsMissing() const { return attributes == 0xFFFFFFFF; }

    /// Whether it is there with all of these attributes. @param wanted FILE_ATTRIBUTE_ bits
    [[nodiscard]] bool Has(std::uint32_t wanted) const {
        return !IsMissing() && (attributes & wanted) == wanted;
    }
};

/// Reads levels. One reader looks at each folder once, so it answers for one moment only.
class clsFolderReader {
public:
    /// A folder and the folders above it, the folder first. @param folder absolute path
    std::vector<FolderLevel> WayUp(const std::wstring& folder);

    /// The ways up from a folder: by its name first; then, where the system leads elsewhere under
    /// that name, by its real path; and where the system can climb above a drive's root, beyond it.
    std::vector<std::vector<FolderLevel>> WaysUp(const std::wstring& folder);

private:
    const FolderLevel& LevelOf(const std::wstring& path);
    const std::vector<FolderLevel>& AboveRoot(const std::wstring& root);

    std::map<std::wstring, FolderLevel> levels_;
    std::map<std::wstring, std::vector<FolderLevel>> aboveRoots_;
};

/// Whether two levels are one folder, or have one name.
bool IsSameFolder(const FolderLevel& left, const FolderLevel& right);

} // namespace vesk
