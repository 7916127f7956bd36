#include "archive/modMemberName.h"

#include <doctest/doctest.h>

#include <string>

using namespace vesk;

namespace {

/// The two forms of the gate at once, for a name of which every byte is its own character.
std::string Inside(const std::string& folder, const std::string& name) {
    const auto wide = [](const std::string& text) {
        std::wstring result;
        for (const char c : text)
            result += static_cast<wchar_t>(static_cast<unsigned char>(c));
        return result;
    };
    const auto path = PathInside(folder, name);
    const auto widePath = PathInside(wide(folder), wide(name));
    REQUIRE(path.has_value() == widePath.has_value());
    CHECK(wide(path.value_or("")) == widePath.value_or(L""));
    return path.value_or("refused");
}

} // namespace

TEST_CASE("a name that stays below the folder is joined with it") {
    struct Row {
        const char* name;
        const char* path;
    };
    for (const Row& row : {Row{"a/b.txt", "C:\\tree\\a\\b.txt"}, Row{"folder/", "C:\\tree\\folder"},
                           Row{"./a", "C:\\tree\\a"}, Row{".\\.\\a//b", "C:\\tree\\a\\b"},
                           Row{"a/./c/.", "C:\\tree\\a\\c"}, Row{".//a//", "C:\\tree\\a"}}) {
        CAPTURE(row.name);
        CHECK(Inside("C:\\tree\\", row.name) == row.path);
        CHECK(Inside("C:\\tree", row.name) == row.path);
    }
    for (const char* name : {"..x", ".hidden", "a..b", "console", "com10.txt", "COM", "nul1", "a b",
                             "com\xBC", "conout$x", "con\xE9"}) {
        CAPTURE(name);
        CHECK(Inside("C:\\tree", name) == std::string("C:\\tree\\") + name);
    }
}

TEST_CASE("a name that could lead elsewhere is refused") {
    for (const char* name :
         {"",      "/",           "\\",        ".",           "./",     ".//.\\",
          "..",    "../up",       "a/../../b", "a/..",        "./..",   ".//../x",
          "C:\\x", "C:x",         "./C:x",     "/a",          "//a",    "\\\\srv\\share\\x",
          "\\x",   "a:stream",    "NUL",       "sub/CON.txt", "aux .x", "LPT1",
          "com0.", "com\xB2.log", "dot.",      "blank ",      "...",    ". ",
          "a/ /b", "what?",       "st*r",      "new\nline",   "conin$", "CONOUT$.a",
          "a|b",   "\x1F",        "prn/x"}) {
        CAPTURE(name);
        CHECK(Inside("C:\\tree", name) == "refused");
    }
    CHECK_FALSE(PathInside("C:\\tree", std::string("a\0b", 3)));
    for (const std::wstring& name :
         {std::wstring(L"a\xD800"), std::wstring(L"\xDC00z"), std::wstring(L"\xDC00\xD800"),
          std::wstring(L"\xD800\xD800\xDC00"), std::wstring(L"com\x00B9")})
        CHECK_FALSE(PathInside(L"C:\\tree", name));
    CHECK(PathInside(L"C:\\tree", L"\x4E2D\xD83D\xDE00.txt") ==
          L"C:\\tree\\\x4E2D\xD83D\xDE00.txt");
}

TEST_CASE("a name too long for a file or for reason is refused as a whole") {
    std::string objection;
    CHECK(PathInside(L"C:", std::wstring(255, 'x')));
    CHECK_FALSE(PathInside(L"C:", L"sub\\" + std::wstring(256, 'x'), &objection));
    CHECK(objection == "its name is too long");
    std::wstring deep;
    for (std::size_t depth = 0; depth < kDeepestMemberName; ++depth)
        deep += L"a/";
    CHECK(PathInside(L"C:", deep));
    CHECK_FALSE(PathInside(L"C:", deep + L"a", &objection));
    CHECK(objection == "its name leads through too many folders");
    std::wstring wide = std::wstring(255, 'x') + L"/";
    while (wide.size() < kLongestMemberName)
        wide += wide;
    CHECK(PathInside(L"C:", wide));
    CHECK_FALSE(PathInside(L"C:", wide + L"a", &objection));
    CHECK(objection == "its name is too long");
}

TEST_CASE("which names mean the folder itself") {
    for (const wchar_t* name : {L".", L"./", L".\\", L"././/."})
        CHECK(NamesFolderItself(name));
    for (const wchar_t* name : {L"", L"/", L"/.", L"..", L"./..", L"a/", L"./a", L"./.a"})
        CHECK_FALSE(NamesFolderItself(name));
}
