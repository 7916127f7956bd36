#include "base/modText.h"

#include "ExpectedText.h"
#include "base/CodePage.h"

#include <utility>

using namespace vesk;

TEST_CASE("paths come apart at their last backslash and last dot") {
    test::CheckLines("paths", [](const std::string& path) {
        return "in " + ParentOf(path) + ", file " + FileNameOf(path) + ", base " +
               BaseNameOf(path) + ", extension " + ExtensionOf(path);
    });
}

TEST_CASE("a typed drive never means its current folder: what is typed may be emptied") {
    CHECK(TypedFolder(" C:\\Tree\\ ") == "C:\\Tree");
    CHECK(TypedFolder("C:\\") == "C:\\");
    CHECK(TypedFolder("C:") == "C:\\");
    CHECK(TypedFolder("  ").empty());
}

TEST_CASE("searching and replacing without regard to case") {
    CHECK(FindNoCase("xx[APPEND]", "[append]") == 2);
    CHECK(FindNoCase("abc", "bc", 2) == std::string::npos);
    CHECK(FindNoCase("abc", "c", 7) == std::string::npos);
    CHECK(FindNoCase("", "a") == std::string::npos);
    CHECK(ReplaceAllNoCase("aXbxA", "x", ";x") == "a;xb;xA");
    CHECK(ReplaceAll("aXbxA", "x", "") == "aXbA");
    CHECK(ReplaceAll("aaa", "", "-") == "aaa");
}

TEST_CASE("splitting keeps blanks and empty pieces; an empty text has none") {
    CHECK(Split("", ',').empty());
    CHECK(Split("0, 1", ',') == std::vector<std::string>{"0", " 1"});
    CHECK(Split(",a,", ',') == std::vector<std::string>{"", "a", ""});
}

TEST_CASE("UTF-16 is told from ANSI text; only blanks are trimmed, only the first word is taken") {
    using Text = std::string;
    test::CheckFunctions(
        "base_texts",
        {
            {"utf16", [](const Text& text) { return Text(IsUtf16(text) ? "yes" : "no"); }},
            {"ascii", AsciiOfUtf16},
            {"trimmed", TrimBlanks},
            {"word", [](const Text& text) { return FirstWord(text, 1); }},
        });
    CHECK(FirstWord("word", 0).empty());
}

TEST_CASE("the second byte of a character is no backslash and no letter") {
    CodePage before = CurrentCodePage();
    SetCodePage({[](unsigned char byte) { return byte >= 0x81 && byte <= 0x9F; }, ""});
    CHECK(FileNameOf("C:\\a\x95\\b") == "a\x95\\b");
    CHECK(ParentOf("C:\\a\x95\\") == "C:");
    CHECK(WithoutTrailingBackslash("C:\\\x95\\\\") == "C:\\\x95\\");
    CHECK(WithTrailingBackslash("\x95\\") == "\x95\\\\");
    CHECK_FALSE(EqualNoCase("\203A", "\203a"));
    CHECK(EqualNoCase("\203AB", "\203Ab"));
    CHECK(WithoutTrailBytes("a\x95") == "a\x95");
    SetCodePage(std::move(before));
}
