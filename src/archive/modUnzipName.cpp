#include "archive/modUnzipName.h"

#include <windows.h>

namespace vesk {

namespace {

std::optional<std::wstring> Widen(const std::string& text, UINT codePage, DWORD flags) {
    const int size = static_cast<int>(text.size()); // a stored name has at most 64 KiB
    const int length = MultiByteToWideChar(codePage, flags, text.data(), size, nullptr, 0);
    if (length <= 0)
        return std::nullopt;
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(codePage, flags, text.data(), size, wide.data(), length);
    return wide;
}

/// @param exact refuse what the code page cannot hold, rather than take a similar character
std::optional<std::string> Narrow(const std::wstring& wide, bool exact) {
    const DWORD flags = exact ? WC_NO_BEST_FIT_CHARS : 0;
    BOOL replaced = FALSE;
    const int size = static_cast<int>(wide.size());
    const int length =
        WideCharToMultiByte(CP_ACP, flags, wide.data(), size, nullptr, 0, nullptr, nullptr);
    if (length <= 0)
        return std::nullopt;
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, flags, wide.data(), size, text.data(), length, nullptr,
                        exact ? &replaced : nullptr);
    if (replaced != FALSE)
        return std::nullopt;
    return text;
}

} // namespace

std::optional<std::string> AnsiName(const ZipMember& member) {
    const bool utf8 = member.encoding == NameEncoding::Utf8;
    if (member.name.empty() || (!utf8 && member.encoding != NameEncoding::Oem))
        return member.name;
    const auto wide =
        Widen(member.name, utf8 ? CP_UTF8 : CP_OEMCP, utf8 ? MB_ERR_INVALID_CHARS : 0);
    if (!wide)
        return std::nullopt;
    // A system whose ANSI code page is UTF-8 knows no "exact", and needs none.
    return Narrow(*wide, utf8 && GetACP() != CP_UTF8);
}

} // namespace vesk
