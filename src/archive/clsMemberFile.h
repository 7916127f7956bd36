#pragma once

#include "archive/clsCabTarget.h"
#include "base/UniqueHandle.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vesk {

/// A member being written. There is no file under its name until it is complete, but for one that
/// is too large to be held back; that is deleted again unless it is kept. What stands in the way is
/// replaced and not written through; if that cannot be done, it stays as it was.
class clsMemberFile {
public:
    /// @param target must outlive this object
    /// @param path from the target's PathOf
    /// @param buffer for bytes held back; one for all members of an archive, since new memory for
    /// each costs time. Must outlive this object
    clsMemberFile(clsCabTarget& target, std::wstring path, const MemberStamp& stamp,
                  std::vector<std::byte>& buffer);
    clsMemberFile(const clsMemberFile&) = delete;
    clsMemberFile& operator=(const clsMemberFile&) = delete;
    ~clsMemberFile();

    /// Where the complete member stands.
    [[nodiscard]] const std::wstring& Path() const { return finalPath_; }

    /// Bytes taken so far.
    [[nodiscard]] std::uint64_t Size() const { return size_; }

    /// @throws Failure; nothing may be written after that
    void Write(std::span<const std::byte> bytes);

    /// The member is complete: it stands under its name afterwards. @throws Failure
    void Keep();

private:
    void Flush();
    void Open();
    bool Create();
    void CheckReplaceable() const;
    void MoveIntoPlace();

    clsCabTarget& target_;
    std::wstring finalPath_;
    std::wstring path_; ///< Where it is written: elsewhere when something stands in the way.
    MemberStamp stamp_;
    FileHandle file_;
    std::vector<std::byte>& pending_; ///< Taken and not written yet.
    std::uint64_t size_ = 0;
    bool kept_ = false;
};

} // namespace vesk
