#include "archive/clsZipPasswords.h"

#include "archive/ArchiveProblem.h"
#include "archive/ZipMember.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace vesk {

namespace {

/// The last byte of the header repeats one that the entry holds, so that a wrong password is seen
/// early. While sizes were not known yet, writers had no CRC and took the time instead.
std::uint8_t PasswordCheck(const ZipMember& member) {
    return static_cast<std::uint8_t>(member.IsStreamed() ? member.dosTime >> 8 : member.crc >> 24);
}

} // namespace

clsZipPasswords::clsZipPasswords(clsByteWindow& archive, clsZipDirectory& directory, Source ask)
    : archive_(archive), directory_(directory), ask_(std::move(ask)) {}

clsZipCipher clsZipPasswords::Find(const ZipMember& member, const Check& check, bool trustKnown) {
    std::optional<ZipContentProblem> damage;
    for (const std::string& password : known_) {
        const auto cipher = Try(member, password);
        if (!cipher)
            continue;
        if (trustKnown)
            return *cipher;
        try {
            check(*cipher);
            return *cipher;
        } catch (const ZipContentProblem& problem) {
            damage = problem;
        }
    }
    if (damage)
        throw ZipContentProblem(*damage);
    return Ask(member, check);
}

clsZipCipher clsZipPasswords::Ask(const ZipMember& member, const Check& check) {
    constexpr int kTries = 3; // an answer may come from a file, and then is always the same
    std::optional<std::string> seemedRight;
    for (int tries = 0; askMore_ && tries < kTries; ++tries) {
        std::optional<std::string> password =
            ask_ ? ask_(std::exchange(isWrong_, true)) : std::nullopt;
        if (!password) {
            askMore_ = false;
            lockedReason_ = "it is encrypted, and no correct password was given";
            break;
        }
        const auto cipher = Try(member, *password);
        if (!cipher)
            continue;
        try {
            check(*cipher);
            known_.push_back(std::move(*password));
            isWrong_ = false; // another member may have another one
            return *cipher;
        } catch (const ZipContentProblem&) {
            // The content is damaged rather than the password wrong when it opens other members
            // too, or is insisted on.
            const bool isRight = OpensOthers(member, *password);
            if (isRight || password == seemedRight)
                known_.push_back(*password);
            if (isRight) {
                isWrong_ = false;
                throw;
            }
            if (password == seemedRight)
                throw ArchiveProblem("wrong password, or its data is damaged");
            seemedRight = std::move(password);
        }
    }
    if (askMore_)
        lockedReason_ = "wrong password";
    askMore_ = false;
    throw ArchiveProblem(lockedReason_);
}

std::optional<clsZipCipher> clsZipPasswords::Try(const ZipMember& member,
                                                 std::string_view password) const {
    const auto header = archive_.View(member.dataAt, ZipMember::kCipherHeaderSize);
    clsZipCipher cipher(password);
    std::byte last{};
    for (const std::byte byte : header)
        last = cipher.Decrypt(byte);
    if (std::to_integer<std::uint8_t>(last) != PasswordCheck(member))
        return std::nullopt;
    return cipher;
}

bool clsZipPasswords::OpensOthers(const ZipMember& member, std::string_view password) const {
    constexpr int kEnough = 8;
    int opened = 0;
    for (std::size_t number = 0; number < directory_.Count(); ++number) {
        const ZipMember other = directory_.Member(number);
        if (other.headerAt == member.headerAt || !other.IsEncrypted() || other.IsFolder() ||
            !other.refusal.empty())
            continue;
        if (!Try(other, password))
            return false;
        if (++opened == kEnough)
            break;
    }
    return opened >= 2; // by chance once in 65,536 times
}

} // namespace vesk
