#include "catalogue/modCatalogueText.h"

#include "catalogue/modNameList.h"

#include <doctest/doctest.h>

using namespace vesk;
using namespace std::string_literals;

TEST_CASE("name lists end in an empty element; a name cut before its NUL is dropped") {
    using Names = std::vector<std::string>;
    CHECK(SplitNameList("Install\0Base\0\0      "s) == Names{"Install", "Base", ""});
    CHECK(SplitNameList("Install\0Cut nam\0\0"s) == Names{"Install", "Cut nam", ""});
    CHECK(SplitNameList("Install\0Cut nam"s) == Names{"Install", ""});
    CHECK(SplitNameList("\0\0    "s) == Names{""});
    CHECK(SplitNameList("") == Names{""});
}

TEST_CASE("truth values as catalogues hold them") {
    for (const char* text : {"1", "-1", " True ", "TRUE", "2.5", "1e2"}) {
        CAPTURE(text);
        CHECK(ToBoolean(text) == true);
    }
    for (const char* text : {"0", "false", "0.0", "-0"}) {
        CAPTURE(text);
        CHECK(ToBoolean(text) == false);
    }
    for (const char* text : {"", " ", "yes", "1x", "inf", "nan", "0x1", "True1"}) {
        CAPTURE(text);
        CHECK_FALSE(ToBoolean(text));
    }
}

TEST_CASE("the catalogue file's text, to the byte") {
    Catalogue catalogue;
    catalogue.installFolder = "VeskLive";
    catalogue.installPathFlag = "0";
    catalogue.showCategories = true;
    catalogue.baseComponents = {{"Base", "b.zip", "", true, true, "http://h/b.zip", "12ABCD"}};
    catalogue.plugins = {{"One", "1.cab", "100", false, false, "", ""},
                         {"T\xE4n", "2.zip", "", true, false, "", "7"}};
    catalogue.categories = {{"100_tools", "100", "Tools"}, {"200_more", "200", "More"}};
    CHECK(
        CatalogueText(catalogue, "5/4/2006 3:02:01 PM") ==
        "; !!!! DO NOT EDIT MANUALLY !!!! use veskbuilder.exe -setup\r\n"
        "; Configuration file for Vesk Builder\r\n"
        "; File: veskbuilder.ini\r\n"
        "; Version: 0.07\r\n"
        "; Date: 5/4/2006 3:02:01 PM\r\n"
        "\r\n"
        "[Install]\r\nFolder=VeskLive\r\nPath=0\r\n"
        "[Base]\r\nName0=Base \r\nZip0=b.zip \r\nEnabled0=1\r\nLock0=1\r\nUrl0=http://h/b.zip \r\n"
        "CRC0=12ABCD \r\n"
        "[Plugin]\r\nName0=One \r\nZip0=1.cab \r\nCat0=100 \r\nEnabled0=0\r\nLock0=0\r\nUrl0= \r\n"
        "CRC0= \r\n"
        "Name1=T\xE4n \r\nZip1=2.zip \r\nCat1= \r\nEnabled1=1\r\nLock1=0\r\nUrl1= \r\nCRC1=7 \r\n"
        "[Categories]\r\nShowCategories=-1\r\n100=100_tools\r\n200=200_more\r\n");
    catalogue.showCategories = false;
    catalogue.categories = {{"old", "x", ""}, {"new", "X", ""}};
    // A key written twice keeps its place and takes the later value, as with the profile functions.
    CHECK(CatalogueText(catalogue, "").ends_with("ShowCategories=0\r\nx=new\r\n"));
}

TEST_CASE("the names of all sections, however many") {
    CHECK(SectionNames("; [no]\r\n[A b]\r\nx=[y]\r\n  [ C ] junk\r\n[unclosed\r").size() == 3);
    CHECK(SectionNames("[A b]\r\nx=[y]\r\n  [ C ] junk\n") == std::vector<std::string>{"A b", "C"});
    CHECK(SectionNames("").empty());
}
