#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

/// Tells names that nothing else has from those that may stand for two members, so that only the
/// latter need to be remembered. Holds four bytes for each name until it is finished, hardly
/// anything from then on. Names are compared as the file system compares them; two different ones
/// are now and then taken for equal, two equal ones never for different.
class clsSharedNames {
public:
    /// Takes the path of a file or folder below the target folder, with "\" between its parts,
    /// which brings those of the folders above it along.
    void Add(std::wstring_view path);

    /// Ends the taking.
    void Finish();

    /// Whether the path may have been added more than once.
    [[nodiscard]] bool MayBeShared(std::wstring_view path) const;

private:
    std::wstring lastFolder_;           // neighbours in an archive mostly share their folder
    std::vector<std::uint32_t> hashes_; ///< Once finished only those of several, sorted.
};

} // namespace vesk
