#include "build/modInfText.h"

#include "ExpectedText.h"
#include "base/CodePage.h"
#include "base/Failure.h"

#include <utility>

using namespace vesk;

TEST_CASE("what is done to a plug-in's INF, its names and its lists") {
    using Text = std::string;
    // Two texts with a bar between them.
    const auto ofTwo = [](const std::function<Text(const Text&, const Text&)>& function) {
        return [function](const Text& both) {
            const auto parts = Split(both, '|');
            return function(parts.at(0), parts.at(1));
        };
    };
    test::CheckFunctions(
        "inf_texts",
        {
            {"menu",
             [](const Text& inf) { return CommentedOutAppendMenu(inf).value_or("as it was"); }},
            {"file", AppendMenuFile},
            {"stripped", StripLeadingNumbering},
            {"prefixed", ofTwo([](const Text& name, const Text& category) {
                 return PrefixedName(name, category).value_or("as it was");
             })},
            {"holds", ofTwo([](const Text& list, const Text& item) {
                 return ListHolds(list, item) ? "yes" : "no";
             })},
            {"heading", ofTwo(SeparatorName)},
        });
    CHECK_THROWS_AS(SeparatorName("1", Text(51, 't')), Failure);
}

TEST_CASE("a character counts as one, and none begins at its second byte") {
    CodePage before = CurrentCodePage();
    SetCodePage({[](unsigned char byte) { return byte >= 0x81 && byte <= 0x9F; }, ""});
    std::string title;
    for (int i = 0; i < 30; ++i)
        title += "\x83=";
    CHECK(SeparatorName("1", title).ends_with("[ " + title + " ]" + std::string(20, '=')));
    CHECK(PrefixedName("\x83NET NET", "NET") == "NET \x83NET NET");
    SetCodePage({nullptr, "", true});
    CHECK(CharacterCount("\xE4\xB8\xAD\xC3\xA4x") == 3);
    SetCodePage(std::move(before));
}
