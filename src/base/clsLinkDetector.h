#pragma once

#include <cstdint>
#include <string>

namespace vesk {

/// Tells files that are links. Windows says so in a file's attributes; Wine does not, and would
/// then delete or write what a link leads to, so there the file is asked for its real path.
class clsLinkDetector {
public:
    /// True on a system that does not show links to files as what they are.
    static bool SystemHidesLinks();

    /// @param folder absolute path of the folder
    /// @param name, attributes of an entry in it that is no folder
    bool IsFileLink(const std::wstring& folder, const std::wstring& name, std::uint32_t attributes);

private:
    std::wstring folder_; ///< Of the last question: neighbours share it.
    std::wstring realFolder_;
};

} // namespace vesk
