#include "ui/kit/modLink.h"

#include "ExpectedText.h"

using namespace vesk;

TEST_CASE("the word under the caret, without one punctuation character at each end, and its link") {
    test::CheckAnswers("links", [](const std::string& question) {
        std::string text = ReplaceAll(question, " / ", "\r\n");
        const std::size_t caret = text.find('|');
        text.erase(caret, 1);
        const std::string word = WordAtCaret(text, caret);
        return ReplaceAll("<" + word + "> <" + TrimLinkPunctuation(word) + "> <" +
                              LinkAtCaret(text, caret) + ">\n",
                          "\r\n", " / ");
    });
    CHECK(WordAtCaret("a", 99) == "a");
}
