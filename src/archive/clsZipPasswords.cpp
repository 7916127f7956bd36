#include "archive/clsZipPasswords.h"

#include <utility>

namespace vesk {

namespace {

constexpr std::array<std::uint32_t, 256> MakeCrcTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t n = 0; n < table.size(); ++n) {
        table[n] = n;
        for (int bit = 0; bit < 8; ++bit)
            table[n] = (table[n] >> 1) ^ ((table[n] & 1) != 0 ? 0xEDB88320 : 0);
    }
    return table;
}

/// One byte fed into a CRC-32 register: the cipher mixes its keys with it.
std::uint32_t CrcStep(std::uint32_t value, std::uint32_t byte) {
    static constexpr std::array<std::uint32_t, 256> kTable = MakeCrcTable();
    return (value >> 8) ^ kTable[(value ^ byte) & 0xFF];
}

/// The last byte of the header repeats one that the entry holds, so that a wrong password is seen
/// early. While sizes were not known yet, writers had no CRC and took the time instead.
std::uint8_t PasswordCheck(const ZipMember& member) {
    return static_cast<std::uint8_t>(member.IsStreamed() ? member.dosTime >> 8 : member.crc >> 24);
}

} // namespace

ZipCipher::ZipCipher(std::string_view password) {
    for (const char c : password)
        Update(static_cast<std::uint8_t>(c));
}

std::byte ZipCipher::Decrypt(std::byte cipher) {
    const std::uint32_t mixed = (keys_[2] & 0xFFFF) | 2;
    const auto plain = static_cast<std::uint8_t>(std::to_integer<std::uint32_t>(cipher) ^
                                                 (mixed * (mixed ^ 1)) >> 8);
    Update(plain);
    return std::byte{plain};
}

void ZipCipher::Update(std::uint8_t plain) {
    keys_[0] = CrcStep(keys_[0], plain);
    keys_[1] = (keys_[1] + (keys_[0] & 0xFF)) * 134775813 + 1;
    keys_[2] = CrcStep(keys_[2], keys_[1] >> 24);
}

clsZipPasswords::clsZipPasswords(clsByteWindow& archive, clsZipDirectory& directory, Source ask)
    : archive_(archive), directory_(directory), ask_(std::move(ask)) {}

ZipCipher clsZipPasswords::Find(const ZipMember& member, const Check& check, bool trustKnown) {
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

ZipCipher clsZipPasswords::Ask(const ZipMember& member, const Check& check) {
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

std::optional<ZipCipher> clsZipPasswords::Try(const ZipMember& member,
                                              std::string_view password) const {
    const auto header = archive_.View(member.dataAt, ZipMember::kCipherHeaderSize);
    ZipCipher cipher(password);
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
