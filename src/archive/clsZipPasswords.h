#pragma once

#include "archive/clsByteWindow.h"
#include "archive/clsZipCipher.h"
#include "archive/clsZipDirectory.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

/// The passwords of one archive: usually one, asked for once.
class clsZipPasswords {
public:
    /// @param wrongBefore an earlier answer was wrong @return nothing when there is none
    using Source = std::function<std::optional<std::string>(bool wrongBefore)>;

    /// Reads or inflates a member under a cipher. @throws ZipContentProblem
    using Check = std::function<void(clsZipCipher cipher)>;

    /// @param archive must outlive the object, as must @param directory
    clsZipPasswords(clsByteWindow& archive, clsZipDirectory& directory, Source ask);

    /// The cipher that opens a member, its header passed already. One wrong password in 256 seems
    /// right by the header alone, so `check` has the last word; it has been called for the cipher
    /// that is returned, unless that is of a proven password and `trustKnown` is set.
    /// @throws ArchiveProblem without a password, ZipContentProblem when the password is right
    ///         and the content is not
    clsZipCipher Find(const ZipMember& member, const Check& check, bool trustKnown);

private:
    clsZipCipher Ask(const ZipMember& member, const Check& check);
    [[nodiscard]] std::optional<clsZipCipher> Try(const ZipMember& member,
                                                  std::string_view password) const;
    [[nodiscard]] bool OpensOthers(const ZipMember& member, std::string_view password) const;

    clsByteWindow& archive_;
    clsZipDirectory& directory_;
    Source ask_;
    std::vector<std::string> known_;
    bool isWrong_ = false; ///< The last answer was, as far as it is known.
    bool askMore_ = true;
    std::string lockedReason_;
};

} // namespace vesk
