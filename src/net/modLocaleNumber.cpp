#include "net/modLocaleNumber.h"

#include <windows.h>

#include <array>
#include <cstdlib>

namespace vesk {

namespace {

std::string LocaleText(LCTYPE type) {
    std::array<char, 16> text{};
    GetLocaleInfoA(LOCALE_USER_DEFAULT, type, text.data(), static_cast<int>(text.size()));
    return text.data();
}

/// Size of the groups: "3;0" (thousands) is 3, "3;2;0" (lakhs) is 32, as NUMBERFMT has it.
UINT Grouping() {
    UINT grouping = 0;
    for (const char c : LocaleText(LOCALE_SGROUPING))
        if (c > '0' && c <= '9')
            grouping = grouping * 10 + static_cast<UINT>(c - '0');
    return grouping;
}

} // namespace

std::string GroupDigits(const std::string& digits) {
    std::string decimal = LocaleText(LOCALE_SDECIMAL);
    std::string thousand = LocaleText(LOCALE_STHOUSAND);
    NUMBERFMTA format{};
    format.LeadingZero = 1;
    format.Grouping = Grouping();
    format.lpDecimalSep = decimal.data();
    format.lpThousandSep = thousand.data();
    format.NegativeOrder = 1; // -1.1
    std::array<char, 64> text{};
    const int length = GetNumberFormatA(LOCALE_USER_DEFAULT, 0, digits.c_str(), &format,
                                        text.data(), static_cast<int>(text.size()));
    return length > 0 ? text.data() : digits;
}

} // namespace vesk
