#include "base/modUtf8.h"

#include <doctest/doctest.h>

using vesk::FromUtf8;

TEST_CASE("UTF-8 is taken to the letter") {
    CHECK(FromUtf8("a\x7F\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF") ==
          L"a\x7F\x00E4\x4E2D\xD83D\xDE00\xDBFF\xDFFF");
    CHECK(FromUtf8("") == L"");
    for (const char* broken :
         {"\x80", "\xC3", "a\xE4\xB8", "\xF0\x9F\x98", "\xC3z", "\xFF", "\xC0\xAF", "\xC1\xBF",
          "\xE0\x80\xAF", "\xF0\x80\x80\xAF",        // overlong
          "\xED\xA0\x80", "\xED\xBF\xBF",            // surrogates
          "\xF4\x90\x80\x80", "\xF5\x80\x80\x80"}) { // beyond Unicode
        CAPTURE(broken);
        CHECK_FALSE(FromUtf8(broken));
    }
}
