#pragma once

#include "archive/ArchiveProblem.h"
#include "archive/clsByteWindow.h"
#include "archive/clsZipDirectory.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

/// The content of a member is not what its entry says. Under a password that has not been proven
/// this may also mean that the password is wrong.
struct ZipContentProblem : ArchiveProblem {
    using ArchiveProblem::ArchiveProblem;
};

/// ZIP's traditional encryption: a stream of bytes from three running keys. Weak, but in use.
class ZipCipher {
public:
    /// Begins a member's stream, of which the first 12 bytes are a header.
    explicit ZipCipher(std::string_view password);

    /// The plain byte for the next one of the stream; bytes come in their order.
    std::byte Decrypt(std::byte cipher);

private:
    void Update(std::uint8_t plain);
    std::array<std::uint32_t, 3> keys_ = {0x12345678, 0x23456789, 0x34567890};
};

/// The passwords of one archive: usually one, asked for once.
class clsZipPasswords {
public:
    /// @param wrongBefore an earlier answer was wrong @return nothing when there is none
    using Source = std::function<std::optional<std::string>(bool wrongBefore)>;

    /// Reads or inflates a member under a cipher. @throws ZipContentProblem
    using Check = std::function<void(ZipCipher cipher)>;

    /// @param archive must outlive the object, as must @param directory
    clsZipPasswords(clsByteWindow& archive, clsZipDirectory& directory, Source ask);

    /// The cipher that opens a member, its header passed already. One wrong password in 256 seems
    /// right by the header alone, so `check` has the last word; it has been called for the cipher
    /// that is returned, unless that is of a proven password and `trustKnown` is set.
    /// @throws ArchiveProblem without a password, ZipContentProblem when the password is right
    ///         and the content is not
    ZipCipher Find(const ZipMember& member, const Check& check, bool trustKnown);

private:
    ZipCipher Ask(const ZipMember& member, const Check& check);
    [[nodiscard]] std::optional<ZipCipher> Try(const ZipMember& member,
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
