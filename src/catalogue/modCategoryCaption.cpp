#include "catalogue/modCategoryCaption.h"

#include "base/modWide.h"

#include <windows.h>

#include <cstddef>
#include <string_view>

namespace vesk {

namespace {

std::wstring WithBlankFor(std::wstring_view what, std::wstring text) {
    if (what.empty())
        return text;
    std::wstring result;
    std::size_t from = 0;
    for (std::size_t at = text.find(what); at != std::wstring::npos; at = text.find(what, from)) {
        result.append(text, from, at - from).push_back(L' ');
        from = at + what.size();
    }
    return result.append(text, from);
}

std::wstring Trimmed(const std::wstring& text) {
    const std::size_t first = text.find_first_not_of(L' ');
    if (first == std::wstring::npos)
        return {};
    return text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

/// First letter of each word upper case, the rest lower case.
std::wstring ProperCase(std::wstring text) {
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    constexpr std::wstring_view kSeparators(L" \t\n\v\f\r\0", 7);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == 0 || kSeparators.find(text[i - 1]) != std::wstring_view::npos)
            CharUpperBuffW(&text[i], 1);
    }
    return text;
}

} // namespace

std::string CategoryCaption(const std::string& value, const std::string& key) {
    // In UTF-16: in the code page "_" and a letter may be the second byte of a character.
    const std::wstring words = WithBlankFor(Widen(key), WithBlankFor(L"_", Widen(value)));
    return Narrowed(ProperCase(Trimmed(words)));
}

} // namespace vesk
