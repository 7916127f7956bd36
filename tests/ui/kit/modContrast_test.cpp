#include "ui/kit/modContrast.h"

#include <doctest/doctest.h>

#include <initializer_list>

using namespace vesk;

TEST_CASE("coloured texts give way to the system's colour where they could not be read") {
    constexpr Colour kGreen = 0x008200;
    constexpr Colour kDarkRed = 0x00008C;
    constexpr Colour kWhite = 0xFFFFFF;
    constexpr Colour kBlack = 0;
    CHECK(ContrastOf(kBlack, kWhite) == doctest::Approx(21));
    CHECK(ContrastOf(kWhite, kWhite) == doctest::Approx(1));
    for (const Colour wanted : {kGreen, kDarkRed}) {
        CHECK(ReadableColour(wanted, kBlack, kWhite) == wanted);
        CHECK(ReadableColour(wanted, kWhite, kBlack) == kWhite);
    }
    CHECK(IsDark(kBlack));
    CHECK_FALSE(IsDark(kWhite));
    CHECK_FALSE(IsDark(0xF0F0F0));
}
