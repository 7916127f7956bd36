#include "base/modWide.h"

#include "base/CodePage.h"
#include "base/modSystemError.h"

#include <windows.h>

#include <cstddef>

namespace vesk {

namespace {

/// Letter by letter, as the file system does it: the comparison of sorted texts passes over
/// characters without a weight, which tell two names apart.
std::wstring UpperCase(std::wstring_view text) {
    std::wstring upper(text);
    const int size = static_cast<int>(upper.size());
    LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, text.data(), size, upper.data(), size);
    return upper;
}

/// @param standIn for characters without a similar one; null for the system's own
/// @param replaced receives whether a character had to be replaced; may be null
std::string ToAnsi(std::wstring_view wide, DWORD flags, const char* standIn, BOOL* replaced) {
    const int size = static_cast<int>(wide.size());
    const int length =
        WideCharToMultiByte(CP_ACP, flags, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length), '\0');
    // A name that turned empty would be another one.
    if (size != 0 &&
        (length == 0 || WideCharToMultiByte(CP_ACP, flags, wide.data(), size, text.data(), length,
                                            standIn, replaced) == 0))
        ThrowLastError("cannot turn into the system's code page:", "a text");
    return text;
}

std::wstring FromCodePage(std::string_view text, UINT codePage) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0'); // no code page needs more units than bytes
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), size)));
    if (wide.empty() && size != 0)
        ThrowLastError("cannot turn into Unicode:", "a text");
    return wide;
}

} // namespace

void UseSystemCodePage() {
    CPINFO info{};
    CodePage page;
    // UTF-8 has no such bytes: none of its later bytes looks like a character of its own.
    if (GetCPInfo(CP_ACP, &info) != 0 && info.MaxCharSize == 2)
        page.isLeadByte = [](unsigned char byte) { return IsDBCSLeadByte(byte) != FALSE; };
    page.isUtf8 = GetACP() == CP_UTF8;
    page.poundAndNegation.clear();
    for (const wchar_t sign : {L'\u00A3', L'\u00AC'}) {
        const auto narrow = NarrowedExactly(std::wstring(1, sign));
        if (narrow && narrow->size() == 1)
            page.poundAndNegation += *narrow;
    }
    SetCodePage(page);
}

std::wstring Widen(std::string_view text) {
    return FromCodePage(text, CP_ACP);
}

std::wstring WidenFromOem(std::string_view text) {
    return FromCodePage(text, CP_OEMCP);
}

std::string Narrowed(std::wstring_view wide) {
    return wide.empty() ? std::string() : ToAnsi(wide, 0, nullptr, nullptr);
}

std::optional<std::string> NarrowedExactly(std::wstring_view wide) {
    if (wide.empty())
        return std::string();
    // A system whose ANSI code page is UTF-8 knows no "exact", and needs none.
    const bool utf8 = GetACP() == CP_UTF8;
    BOOL replaced = FALSE;
    std::string text =
        ToAnsi(wide, utf8 ? 0 : WC_NO_BEST_FIT_CHARS, nullptr, utf8 ? nullptr : &replaced);
    if (replaced != FALSE)
        return std::nullopt;
    return text;
}

std::wstring AsAnsiSees(std::wstring_view wide) {
    if (wide.empty() || GetACP() == CP_UTF8) // which has every character
        return std::wstring(wide);
    return Widen(ToAnsi(wide, 0, "_", nullptr));
}

std::wstring LongPath(std::wstring_view absolute) {
    if (absolute.starts_with(L"\\\\?\\"))
        return std::wstring(absolute);
    if (absolute.starts_with(L"\\\\"))
        return L"\\\\?\\UNC" + std::wstring(absolute.substr(1));
    return L"\\\\?\\" + std::wstring(absolute);
}

std::wstring LongPath(std::string_view absolute) {
    return LongPath(Widen(absolute));
}

std::wstring AbsoluteWidePath(std::string_view path) {
    return AbsoluteWidePath(Widen(path));
}

std::wstring AbsoluteWidePath(std::wstring path) {
    // It means the drive's current folder to the system, but the root to people.
    if (path.size() == 2 && path[1] == L':')
        path += L'\\';
    std::wstring buffer(32768, L'\0'); // the system's own limit
    const DWORD length =
        GetFullPathNameW(path.c_str(), static_cast<DWORD>(buffer.size()), buffer.data(), nullptr);
    if (length == 0 || length >= buffer.size())
        ThrowSystemError(length == 0 ? GetLastError() : ERROR_FILENAME_EXCED_RANGE,
                         "not a path:", Narrowed(path));
    buffer.resize(length);
    return buffer;
}

std::wstring AbsoluteLongPath(std::string_view path) {
    return LongPath(AbsoluteWidePath(path));
}

std::wstring WithoutLongPrefix(std::wstring_view longPath) {
    constexpr std::wstring_view kShare = L"\\\\?\\UNC\\";
    constexpr std::wstring_view kPlain = L"\\\\?\\";
    if (longPath.starts_with(kShare))
        return L"\\\\" + std::wstring(longPath.substr(kShare.size()));
    return std::wstring(longPath.starts_with(kPlain) ? longPath.substr(kPlain.size()) : longPath);
}

bool IsSamePath(std::wstring_view left, std::wstring_view right) {
    return left.size() == right.size() && UpperCase(left) == UpperCase(right);
}

} // namespace vesk
