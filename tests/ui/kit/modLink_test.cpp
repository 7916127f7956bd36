#include "ui/kit/modLink.h"

#include "ExpectedText.h"
#include "base/CodePage.h"

#include <utility>

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

TEST_CASE("a letter is not taken for punctuation, nor its second byte") {
    CodePage before = CurrentCodePage();
    SetCodePage({nullptr, "\xAC"}); // as the one of Central Europe has it
    CHECK(LinkAtCaret("\xA3ukasz@host.pl", 0) == "mailto:\xA3ukasz@host.pl");
    SetCodePage({[](unsigned char byte) { return byte >= 0x81 && byte <= 0x9F; }, ""});
    CHECK(TrimLinkPunctuation("www.a.com/\x83]") == "www.a.com/\x83]");
    CHECK(MakeLink("\x83@").empty());
    SetCodePage(std::move(before));
}
