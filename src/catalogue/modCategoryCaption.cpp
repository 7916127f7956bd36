#include "catalogue/modCategoryCaption.h"

#include "base/modText.h"

#include <windows.h>

#include <cstddef>
#include <string_view>

namespace vesk {

namespace {

/// First letter of each word upper case, the rest lower case, in the system's code page.
std::string ProperCase(std::string text) {
    CharLowerBuffA(text.data(), static_cast<DWORD>(text.size()));
    constexpr std::string_view kSeparators(" \t\n\v\f\r\0", 7);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == 0 || kSeparators.find(text[i - 1]) != std::string_view::npos)
            CharUpperBuffA(&text[i], 1);
    }
    return text;
}

} // namespace

std::string CategoryCaption(const std::string& value, const std::string& key) {
    return ProperCase(TrimBlanks(ReplaceAll(ReplaceAll(value, "_", " "), key, " ")));
}

} // namespace vesk
