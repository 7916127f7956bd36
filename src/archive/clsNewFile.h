#pragma once

#include "base/UniqueHandle.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace vesk {

/// What is restored of a member in addition to its content.
struct FileStamp {
    DWORD attributes = FILE_ATTRIBUTE_ARCHIVE; ///< Read-only, hidden and system as stored.
    std::optional<FILETIME> modified, accessed, created;
    DWORD error = ERROR_SUCCESS; ///< Why a time that is stored is not among them.
};

/// Whether a path ends in the short name that the system gave to a file or folder with another one.
/// @param path as LongPath gives it
bool IsShortName(const std::wstring& path);

/// Sets those times of a file or folder that the stamp has.
/// @return the system's error code, 0 when all is well
std::uint32_t SetTimes(HANDLE handle, const FileStamp& stamp);

/// A file being written; deleted again unless Keep() is called. Where there is a file already, the
/// new one is written next to it and moved over it when complete: the old one is never overwritten
/// in part, nor written to if it is a hard link to a file elsewhere.
class clsNewFile {
public:
    enum class Place {
        UnderItsName, ///< Unless something is there. For what is written in one call.
        Beside        ///< So that no part of it is ever seen under its name.
    };

    /// @param path absolute, as LongPath gives it; must outlive the object, as must the stamp
    /// @throws Failure, ArchiveProblem when what is there is not a plain file
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
