#include "ui/kit/modColumns.h"

#include <doctest/doctest.h>

#include <vector>

using vesk::ShareWidth;

TEST_CASE("columns share the width there is, and none is pushed out of sight") {
    using Widths = std::vector<int>;
    struct Row {
        Widths wanted;
        int total;
        Widths given;
    };
    for (const Row& row : {
             Row{{100, 50, 70}, 400, {280, 50, 70}},           // what is left over
             Row{{800, 80, 100, 70}, 400, {150, 80, 100, 70}}, // one long name
             Row{{800, 80, 900, 70}, 400, {125, 80, 125, 70}}, // two long texts
             Row{{10, 800, 900}, 300, {10, 145, 145}},
             Row{{900, 900, 900}, 301, {101, 100, 100}},
             Row{{40}, 20, {20}},
         }) {
        CAPTURE(row.total);
        CHECK(ShareWidth(row.wanted, row.total) == row.given);
    }
}
