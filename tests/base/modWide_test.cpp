#include "base/modWide.h"

#include <doctest/doctest.h>

using namespace vesk;

TEST_CASE("spellings of a path may differ in the case of letters, and in nothing else") {
    CHECK(IsSamePath(L"C:\\Tree\\\x00C4\x0416", L"c:\\tREE\\\x00E4\x0436"));
    CHECK_FALSE(IsSamePath(L"C:\\Tree", L"C:\\Tree\\"));
    CHECK_FALSE(IsSamePath(L"C:\\a-b", L"C:\\a_b"));
    CHECK_FALSE(IsSamePath(L"C:\\Tree", L"C:\\T\x00ADree")); // a hyphen that is not shown
}

TEST_CASE("a share keeps its place in a long path") {
    CHECK(LongPath(L"\\\\server\\share\\a") == L"\\\\?\\UNC\\server\\share\\a");
}
