#include "build/modInfText.h"

#include "ExpectedText.h"
#include "base/Failure.h"

using namespace vesk;

TEST_CASE("what is done to a plug-in's INF, its names and its lists") {
    using Text = std::string;
    test::CheckFunctions(
        "inf_texts",
        {
            {"menu",
             [](const Text& inf) { return CommentedOutAppendMenu(inf).value_or("as it was"); }},
            {"file", AppendMenuFile},
            {"stripped", StripLeadingNumbering},
            {"prefixed",
             [](const Text& both) {
                 const auto parts = Split(both, '|');
                 return PrefixedName(parts.at(0), parts.at(1)).value_or("as it was");
             }},
            {"holds",
             [](const Text& both) {
                 const auto parts = Split(both, '|');
                 return Text(ListHolds(parts.at(0), parts.at(1)) ? "yes" : "no");
             }},
            {"heading",
             [](const Text& both) {
                 const auto parts = Split(both, '|');
                 return SeparatorName(parts.at(0), parts.at(1));
             }},
        });
    CHECK_THROWS_AS(SeparatorName("1", Text(51, 't')), Failure);
}
