#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vesk {

/// The text in UTF-16, one unit in each wchar_t (where that is wider, too: what is judged here are
/// Windows' names). Nothing when the bytes are not UTF-8 to the letter: overlong forms, surrogates
/// and values beyond Unicode are not, since two readers may take them for different characters.
std::optional<std::wstring> FromUtf8(std::string_view text);

} // namespace vesk
