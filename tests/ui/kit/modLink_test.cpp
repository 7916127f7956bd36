#include "ui/kit/modLink.h"

#include <doctest/doctest.h>

using namespace vesk;

TEST_CASE("the word under the caret") {
    struct Row {
        const char* text;
        std::size_t caret;
        const char* word;
    };
    for (const Row& row : {
             Row{"see www.a.com now", 4, "www.a.com"},  // at its first letter
             Row{"see www.a.com now", 12, "www.a.com"}, // at its last letter
             Row{"see www.a.com now", 13, ""},          // on the blank behind it
             Row{"www.a.com", 0, "www.a.com"},
             Row{"www.a.com", 9, "www.a.com"}, // at the end of the text
             Row{"", 0, ""},
             Row{"a", 99, "a"},
             Row{"at www.a.com\r\nnext", 12, "www.a.com"}, // the line break ends it
             // Backwards only a blank ends it: the line before belongs to the word.
             Row{"end\r\nwww.a.com", 7, "end\r\nwww.a.com"},
         }) {
        CAPTURE(row.text);
        CAPTURE(row.caret);
        CHECK(WordAtCaret(row.text, row.caret) == row.word);
    }
}

TEST_CASE("one punctuation character goes at each end") {
    struct Row {
        const char* word;
        const char* trimmed;
    };
    for (const Row& row : {
             Row{"a.com,", "a.com"},
             Row{"(a.com)", "a.com"},
             Row{"((a.com))", "(a.com)"},
             Row{"\"a.com!", "a.com"},
             Row{"\xA3"
                 "a.com",
                 "a.com"},
             Row{"a.com.", "a.com."},
             Row{"-a.com-", "-a.com-"},
             Row{"a;", "a;"},
             Row{"!", ""},
             Row{"", ""},
             Row{"end\r\na.com", "enda.com"},
         })
        CHECK(TrimLinkPunctuation(row.word) == row.trimmed);
}

TEST_CASE("what a word opens") {
    struct Row {
        const char* word;
        const char* link;
    };
    for (const Row& row : {
             Row{"me@a.org", "mailto:me@a.org"}, // the @ counts first
             Row{"www.a.com", "www.a.com"},      // the beginning counts before the end
             Row{"WWW.A.COM", "WWW.A.COM"},
             Row{"ftp://a", "ftp://a"},
             Row{"ftp.a", "ftp.a"},
             Row{"http://a", "http://a"},
             Row{"https://a", ""},
             Row{"a.Com", "http://a.Com"},
             Row{"a.org.uk", "http://a.org.uk"},
             Row{"a.net", "http://a.net"},
             Row{"a.com.", ""},
             Row{"a.de", ""},
             Row{"", ""},
         })
        CHECK(MakeLink(row.word) == row.link);
    CHECK(LinkAtCaret("visit a.com, please", 8) == "http://a.com");
}
