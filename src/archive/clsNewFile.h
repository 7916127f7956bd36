#pragma once

#include "base/UniqueHandle.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace vesk {

/// What is restored of a member besides its content.
struct FileStamp {
    DWORD attributes = FILE_ATTRIBUTE_ARCHIVE; ///< Read-only, hidden and system as stored.
    std::optional<FILETIME> modified, accessed, created;
    DWORD error = ERROR_SUCCESS; ///< Why a time that is stored is not among them.
};

/// Sets the times of a file or folder that the stamp has.
/// @return the system's error code, 0 when all is well
std::uint32_t SetTimes(HANDLE handle, const FileStamp& stamp);

/// A file being written; deleted again unless Keep() is reached. Where a file stands already, the
/// new one is written beside it and moved over it when complete: the old one is never half
/// overwritten, and never written through should it be a second name of a file elsewhere.
class clsNewFile {
public:
    enum class Place {
        UnderItsName, ///< Unless something stands there. For what is written at one stroke.
        Beside        ///< So that no part of it is ever seen under its name.
    };

    /// @param path absolute, as LongPath gives it; must outlive the object, as must the stamp
    /// @throws Failure, ArchiveProblem when what stands in the way is no plain file
    clsNewFile(const std::wstring& path, const FileStamp& stamp, Place place);
    clsNewFile(const clsNewFile&) = delete;
    clsNewFile& operator=(const clsNewFile&) = delete;
    ~clsNewFile();

    /// Appends. @throws Failure
    void Write(std::span<const std::byte> content);

    /// Stamps the complete file and puts it under its name. @throws Failure
    /// @return the system's error code when times or attributes could not be set, 0 otherwise
    std::uint32_t Keep();

private:
    bool Create();
    void CreateBeside();
    void MoveIntoPlace();

    const std::wstring& finalPath_;
    std::wstring path_;
    const FileStamp& stamp_;
    FileHandle file_;
    bool kept_ = false;
};

} // namespace vesk
