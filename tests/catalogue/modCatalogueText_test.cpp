#include "catalogue/modCatalogueText.h"

#include "catalogue/modIniText.h"
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

TEST_CASE("a key written twice keeps its place and takes the later value") {
    Catalogue catalogue; // as with the profile functions; all else is compared where it is read
    catalogue.categories = {{"old", "x", ""}, {"new", "X", ""}};
    CHECK(CatalogueText(catalogue, "").ends_with("ShowCategories=0\r\nx=new\r\n"));
}

TEST_CASE("the names of all sections, however many") {
    CHECK(SectionNames("; [no]\r\n[A b]\r\nx=[y]\r\n  [ C ] junk\r\n[unclosed\r").size() == 3);
    CHECK(SectionNames("[A b]\r\nx=[y]\r\n  [ C ] junk\n") == std::vector<std::string>{"A b", "C"});
    CHECK(SectionNames("").empty());
}
