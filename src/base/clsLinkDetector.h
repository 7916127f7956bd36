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

    /// Deletes a file where the system hides links and this one is none, by one opening for both:
    /// removing a tree took twice as long with an opening for the question and one for the
    /// deletion.
    /// @param folder, name as above
    /// @return false when that is not so, or cannot be done; the file is as it was
    bool DeleteAtOnce(const std::wstring& folder, const std::wstring& name);

private:
    bool LeadsTo(const std::wstring& real, const std::wstring& folder, const std::wstring& name);

    std::wstring folder_; ///< Of the last question: neighbours share it.
    std::wstring realFolder_;
};

} // namespace vesk
