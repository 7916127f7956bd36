#include "base/modSha256.h"

#include "base/Failure.h"
#include "base/Problem.h"
#include "base/UniqueHandle.h"
#include "base/modSystemError.h"

#include <windows.h>

#include <wincrypt.h>

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace vesk {

namespace {

BOOL ReleaseProvider(HCRYPTPROV provider) {
    return CryptReleaseContext(provider, 0);
}

using Provider = UniqueHandle<ReleaseProvider, HCRYPTPROV>;
using Hash = UniqueHandle<::CryptDestroyHash, HCRYPTHASH>;

/// The headers name it for later systems only: Windows XP has it from SP3 on.
constexpr ALG_ID kSha256 = ALG_CLASS_HASH | ALG_TYPE_ANY | 12;

constexpr const char* kWhat = "cannot compute the SHA-256 of";

std::string Digits(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        text += kDigits[static_cast<unsigned char>(c) >> 4];
        text += kDigits[static_cast<unsigned char>(c) & 0xF];
    }
    return text;
}

/// Feeds the whole file to the hash. @throws Failure
void AddFile(const Hash& hash, const std::string& path, const std::function<void()>& meanwhile) {
    constexpr std::size_t kPiece = std::size_t{1} << 20;
    const FileHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file)
        ThrowLastError("cannot read", path);
    std::vector<BYTE> piece(kPiece);
    for (DWORD read = 0;;) {
        if (ReadFile(file.Get(), piece.data(), static_cast<DWORD>(piece.size()), &read, nullptr) ==
            0)
            ThrowLastError("cannot read", path);
        if (read == 0)
            return;
        if (CryptHashData(hash.Get(), piece.data(), read, 0) == 0)
            ThrowLastError(kWhat, path);
        if (meanwhile)
            meanwhile();
    }
}

} // namespace

std::string Sha256OfFile(const std::string& path, const std::function<void()>& meanwhile) {
    HCRYPTPROV acquired = 0;
    if (CryptAcquireContextA(&acquired, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT) == 0)
        ThrowLastError(kWhat, path);
    const Provider provider(acquired);
    HCRYPTHASH created = 0;
    if (CryptCreateHash(provider.Get(), kSha256, 0, 0, &created) == 0)
        ThrowLastError(kWhat, path);
    const Hash hash(created);
    AddFile(hash, path, meanwhile);
    std::array<char, 32> digest{};
    DWORD size = digest.size();
    if (CryptGetHashParam(hash.Get(), HP_HASHVAL, reinterpret_cast<BYTE*>(digest.data()), &size,
                          0) == 0)
        ThrowLastError(kWhat, path);
    return Digits({digest.data(), size});
}

std::string Sha256Fault(const std::string& path, const std::string& expected,
                        const std::function<void()>& meanwhile) {
    if (expected.empty())
        return {};
    try {
        const std::string found = Sha256OfFile(path, meanwhile);
        return found == expected ? ""
                                 : "SHA-256 differs, expected " + expected + ", found " + found;
    } catch (const Failure& failure) {
        return "its SHA-256 could not be computed, " + ReasonOf(failure);
    }
}

} // namespace vesk
