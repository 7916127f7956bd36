#include "ui/kit/modBoxText.h"

#include <doctest/doctest.h>

using namespace vesk;

TEST_CASE("a word too long for a message box is broken, and nothing of it is lost") {
    const std::string word(80, 'w');
    CHECK(WithBreaks(word + " " + word) == word + " " + word);
    CHECK(WithBreaks("x\r\n" + word + "yz") == "x\r\n" + word + "\r\nyz");
    CHECK(WithBreaks(word + word + word) == word + "\r\n" + word + "\r\n" + word);
}

TEST_CASE("a name in a sentence has sixty letters at most") {
    CHECK(Shortened(std::string(60, 'n')) == std::string(60, 'n'));
    CHECK(Shortened(std::string(61, 'n')) == std::string(60, 'n') + "...");
}

TEST_CASE("a failure is told as a sentence") {
    CHECK(AsSentence("cannot replace C:\\x.ini: Access denied.") ==
          "Cannot replace C:\\x.ini: Access denied.");
    CHECK(AsSentence("there is none") == "There is none.");
    CHECK(AsSentence("x.zip: it is damaged") == "x.zip: it is damaged."); // a file's name stays
    CHECK(AsSentence("").empty());
}
