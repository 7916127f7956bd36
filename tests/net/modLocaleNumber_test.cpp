#include "net/modLocaleNumber.h"

#include "base/modText.h"

#include <windows.h>

#include <doctest/doctest.h>

#include <array>

using namespace vesk;

TEST_CASE("whole numbers are grouped as the user's locale has it, without decimals") {
    std::array<char, 16> separator{};
    std::array<char, 16> grouping{};
    GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_STHOUSAND, separator.data(), 16);
    GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SGROUPING, grouping.data(), 16);
    CHECK(GroupDigits("0") == "0");
    CHECK(GroupDigits("123") == "123");
    if (std::string(grouping.data()) == "3;0")
        CHECK(GroupDigits("1234567") == ReplaceAll("1,234,567", ",", separator.data()));
}
