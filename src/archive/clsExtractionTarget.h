#pragma once

#include "archive/clsNameTree.h"
#include "archive/clsNewFile.h"
#include "archive/clsSharedNames.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vesk {

/// What else is to be said of a file that was written.
struct AddedFile {
    std::optional<Overwriting> overwriting; ///< Another member whose name and bytes it replaces.
    bool isWritten = false;                 ///< Not when a later member has its name already.
    std::uint32_t stampError = 0;           ///< Why its times are not set; 0 when they are.
};

/// The folder that an archive is extracted into. Paths given to it come from MemberPath for this
/// folder, members are known by numbers. Nothing is written through a junction or link below the
/// folder; a file that is there is replaced, not written through. Of two members with one name the
/// one with the greater number is kept, in whatever order they come.
class clsExtractionTarget {
public:
    /// A target that writes nothing and answers as an empty folder would.
    clsExtractionTarget() = default;

    /// Creates the folder. @throws Failure
    explicit clsExtractionTarget(const std::string& folder);

    /// The folder's absolute path as LongPath gives it, without a trailing backslash; empty when
    /// nothing is written.
    [[nodiscard]] const std::wstring& Folder() const { return folder_; }

    /// Says which names two members may have; without it any name is remembered. @param names
    /// finished, of all members' paths without the target folder's
    void ExpectShared(clsSharedNames names) { shared_ = std::move(names); }

    /// Creates a folder with those above it; its stamp is set by FinishFolders, since everything
    /// written into the folder would change its times again. @throws Failure, ArchiveProblem
    void AddFolder(const std::wstring& path, std::size_t member, const FileStamp& stamp);

    /// Writes a complete file. After a failure there is none under this name.
    /// @throws Failure, ArchiveProblem
    AddedFile AddFile(const std::wstring& path, const MemberContent& content,
                      std::span<const std::byte> bytes, const FileStamp& stamp);

    /// A file that comes in pieces: it gets its name when Keep() is called, and is deleted again if
    /// it is not.
    class LargeFile {
    public:
        /// @param target must outlive this object @param size of what is to come
        /// @throws Failure, ArchiveProblem
        LargeFile(clsExtractionTarget& target, std::wstring path, const FileStamp& stamp,
                  std::uint64_t size);

        /// @throws Failure
        void Write(std::span<const std::byte> piece);

        /// @throws Failure, ArchiveProblem
        AddedFile Keep(const MemberContent& content);

    private:
        clsExtractionTarget& target_;
        std::wstring path_;
        FileStamp stamp_;
        std::optional<clsNewFile> file_; ///< None where nothing is written.
    };

    /// Sets the stamps of the folders, the innermost first.
    /// @param notSet receives each member whose times could not be set, and the system's error code
    void FinishFolders(const std::function<void(std::size_t member, std::uint32_t error)>& notSet);

private:
    struct StampedFolder {
        std::wstring path;
        std::size_t member;
        FileStamp stamp;
    };

    [[nodiscard]] bool WritesNothing() const { return folder_.empty(); }
    std::size_t EnsureFolder(std::wstring_view path);

    /// @param write brings the file under its name, and gives the error of its stamp
    template <class Write>
    AddedFile Take(const std::wstring& path, const MemberContent& content, Write write);

    std::wstring folder_;
    clsNameTree names_; ///< What is in it exists: plain folders, and files of this run.
    std::optional<clsSharedNames> shared_;
    std::vector<StampedFolder> stampedFolders_;
};

} // namespace vesk
