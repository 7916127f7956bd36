#include "ui/kit/modLink.h"

#include <doctest/doctest.h>

#include <initializer_list>
#include <tuple>

using namespace vesk;

using Pairs = std::initializer_list<std::pair<const char*, const char*>>;

TEST_CASE("the word under the caret") {
    for (const auto& [text, caret, word] :
         std::initializer_list<std::tuple<const char*, std::size_t, const char*>>{
             {"see www.a.com now", 4, "www.a.com"},  // at its first letter
             {"see www.a.com now", 12, "www.a.com"}, // at its last letter
             {"see www.a.com now", 13, ""},          // on the blank behind it
             {"www.a.com", 0, "www.a.com"},
             {"www.a.com", 9, "www.a.com"}, // at the end of the text
             {"", 0, ""},
             {"a", 99, "a"},
             {"at www.a.com\r\nnext", 12, "www.a.com"}, // the line break ends it
             // Backwards only a blank ends it: the line before belongs to the word.
             {"end\r\nwww.a.com", 7, "end\r\nwww.a.com"}}) {
        CAPTURE(text);
        CAPTURE(caret);
        CHECK(WordAtCaret(text, caret) == word);
    }
}

TEST_CASE("one punctuation character goes at each end") {
    for (const auto& [word, trimmed] : Pairs{{"a.com,", "a.com"},
                                             {"(a.com)", "a.com"},
                                             {"((a.com))", "(a.com)"},
                                             {"\"a.com!", "a.com"},
                                             {"\xA3!a.com", "!a.com"},
                                             {"a.com.", "a.com."},
                                             {"-a.com-", "-a.com-"},
                                             {"a;", "a;"},
                                             {"!", ""},
                                             {"", ""},
                                             {"end\r\na.com", "enda.com"}})
        CHECK(TrimLinkPunctuation(word) == trimmed);
}

TEST_CASE("what a word opens") {
    for (const auto& [word, link] :
         Pairs{{"me@a.org", "mailto:me@a.org"}, // the @ counts first
               {"www.a.com", "www.a.com"},      // the beginning before the end
               {"WWW.A.COM", "WWW.A.COM"},
               {"ftp://a", "ftp://a"},
               {"ftp.a", "ftp.a"},
               {"http://a", "http://a"},
               {"https://a", ""},
               {"a.Com", "http://a.Com"},
               {"a.org.uk", "http://a.org.uk"},
               {"a.net", "http://a.net"},
               {"a.com.", ""},
               {"a.de", ""},
               {"", ""}})
        CHECK(MakeLink(word) == link);
    CHECK(LinkAtCaret("visit a.com, please", 8) == "http://a.com");
}
