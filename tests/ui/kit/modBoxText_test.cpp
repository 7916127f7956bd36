#include "ui/kit/modBoxText.h"

#include "ExpectedText.h"

using namespace vesk;

TEST_CASE("long words are broken, long names shortened, and failures told as sentences") {
    test::CheckFunctions(
        "box_texts", {{"breaks", WithBreaks}, {"shortened", Shortened}, {"sentence", AsSentence}});
}
