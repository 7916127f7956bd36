#include "archive/modMemberName.h"

#include <doctest/doctest.h>

using vesk::PathInside;

TEST_CASE("a name that stays below the folder is joined with it") {
    CHECK(PathInside("C:\\tree\\", "a/b.txt") == "C:\\tree\\a\\b.txt");
    CHECK(PathInside("C:\\tree", "folder/") == "C:\\tree\\folder");
    for (const char* name :
         {"..x", ".hidden", "a..b", "console", "com10.txt", "COM", "nul1", "a b"}) {
        CAPTURE(name);
        CHECK(PathInside("C:\\tree", name));
    }
}

TEST_CASE("a name that could lead elsewhere is refused") {
    for (const char* name : {"",          "/",     "\\",          "..",   "../up",
                             "a/../../b", "a/./b", "C:\\x",       "C:x",  "\\\\srv\\share\\x",
                             "\\x",       "a//b",  "a:stream",    "NUL",  "sub/CON.txt",
                             "aux .x",    "LPT1",  "com\xB2.log", "dot.", "blank ",
                             "...",       "a/ /b", "what?",       "st*r", "new\nline",
                             "conin$",    "a|b"}) {
        CAPTURE(name);
        CHECK_FALSE(PathInside("C:\\tree", name));
    }
}
