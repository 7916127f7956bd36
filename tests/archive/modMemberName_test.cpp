#include "archive/modMemberName.h"

#include "archive/NameTable.h"
#include "base/modUtf8.h"

#include <algorithm>

using namespace vesk;
using namespace vesk::test;

namespace {

std::string BytesOf(const std::wstring& text) {
    std::string bytes;
    for (const wchar_t c : text)
        bytes += static_cast<char>(c);
    return bytes;
}

} // namespace

TEST_CASE(
    "a name is joined with the folder, or refused for the reason, in both forms of the gate") {
    for (const auto& [name, path, reason] : NameTable()) {
        CAPTURE(name);
        const std::wstring wide = *FromUtf8(name);
        std::string objection;
        const auto widePath = PathInside(L"C:\\tree", wide, &objection);
        if (reason == kAnsiReason)
            continue;
        CHECK(objection == reason);
        CHECK(widePath == PathInside(L"C:\\tree\\", wide));
        CHECK(widePath.value_or(L"") == (path.empty() ? L"" : L"C:\\tree\\" + *FromUtf8(path)));
        if (std::ranges::any_of(wide, [](wchar_t c) { return c > 0xFF; }))
            continue; // every byte is its own character in the other form
        const auto bytePath = PathInside("C:\\tree", BytesOf(wide));
        CHECK(bytePath.value_or("") == BytesOf(widePath.value_or(L"")));
    }
    CHECK_FALSE(PathInside("C:\\tree", std::string("a\0b", 3)));
    for (const std::wstring name : {L"a\xD800", L"\xDC00z", L"\xDC00\xD800", L"\xD800\xD800\xDC00"})
        CHECK_FALSE(PathInside(L"C:\\tree", name));
}

TEST_CASE("a name too long for a file or for reason is refused as a whole") {
    std::wstring deep;
    for (std::size_t depth = 0; depth < kDeepestMemberName; ++depth)
        deep += L"a/";
    const std::wstring part(255, 'x');
    std::wstring wide = part + L"/";
    while (wide.size() < kLongestMemberName)
        wide += wide;
    for (const auto& [good, objection] :
         {std::pair{deep, "its name leads through too many folders"},
          {wide, "its name is too long"},
          {part, "its name is too long"}}) {
        std::string told;
        CHECK(PathInside(L"C:", good));
        CHECK_FALSE(PathInside(L"C:", good + L"x", &told));
        CHECK(told == objection);
    }
}
