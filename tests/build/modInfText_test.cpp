#include "build/modInfText.h"

#include "base/Failure.h"

#include <doctest/doctest.h>

#include <array>

using namespace vesk;

TEST_CASE("commenting out the menu section") {
    CHECK(CommentedOutAppendMenu("[PEBuilder]\r\nName=x\r\n[append]\r\nNU2MENU.XML, a.xml\r\n") ==
          "[PEBuilder]\r\nName=x\r\n;[Append]\r\n;nu2menu.xml, a.xml\r\n");
    CHECK(CommentedOutAppendMenu("[Append]\nnu2menu.xml,a") == ";[Append]\n;nu2menu.xml,a");
    CHECK_FALSE(CommentedOutAppendMenu(";[Append]\r\nnu2menu.xml, a.xml\r\n"));
    CHECK_FALSE(CommentedOutAppendMenu("[Append]\r\nother.xml, a.xml\r\n"));
    CHECK_FALSE(CommentedOutAppendMenu(""));
}

TEST_CASE("the plug-in's own menu file") {
    CHECK(AppendMenuFile("[Append]\r\nnu2menu.xml, my_nu2menu.xml\r\n") == "my_nu2menu.xml");
    CHECK(AppendMenuFile("a,b\r\n[APPEND]\r\nnu2menu.xml,m.xml \r\nx") == "m.xml");
    for (const char* none : {"[Append]\r\nNU2MENU.XML, m.xml\r\n", "nu2menu.xml, m.xml\r\n[Append]",
                             "[Append]\r\nnu2menu.xml, m.xml\r", "[Append]\r\nnu2menu.xml\r\n", "",
                             "[Append]\nnu2menu.xml, m.xml\n"}) {
        CAPTURE(none);
        CHECK(AppendMenuFile(none).empty());
    }
}

TEST_CASE("names lose their numbering and gain a prefix") {
    for (const auto& [name, stripped, prefixed] :
         {std::array{"1. My Tool", "My Tool", "1. My Tool"},
          {"01 - Network Tools", "- Network Tools", "3 - Network Tools"},
          {"7-Zip", "Zip", "3 Zip"},
          {"Tool 2", "Tool 2", "3 Tool 2"},
          {"\xA3\xAC(5) x", "x", "3 x"},
          {"123", "", "3 "},
          {"", "", "3 "}}) {
        CHECK(StripLeadingNumbering(name) == stripped);
        if (std::string(name) != "1. My Tool")
            CHECK(PrefixedName(name, "3") == prefixed);
    }
    // The numbering falls away before the first word is looked at, so only a letter prefix is
    // found.
    CHECK(PrefixedName("100 Tool", "100") == "100 Tool");
    CHECK_FALSE(PrefixedName("NET3 Tool", "3"));
    CHECK_FALSE(PrefixedName("12NET", "NET"));
    CHECK(PrefixedName("Tool NET", "NET") == "NET Tool NET");
}

TEST_CASE("lists are compared item by item, blanks included") {
    CHECK(ListHolds("0,1", "1"));
    CHECK(ListHolds("1", "1"));
    CHECK_FALSE(ListHolds("0, 1", "1"));
    CHECK_FALSE(ListHolds("10", "1"));
    CHECK_FALSE(ListHolds("", ""));
}

TEST_CASE("a category's heading fills its line") {
    CHECK(SeparatorName("1", "System") ==
          "1 ============[ System ]============================================");
    CHECK(SeparatorName("", std::string(50, 't')).size() == 1 + 12 + 4 + 50);
    CHECK_THROWS_AS(SeparatorName("1", std::string(51, 't')), Failure);
}
