#include "net/modDownloadReason.h"

#include "ExpectedText.h"
#include "net/modHttpText.h"

#include <map>
#include <memory>

using namespace vesk;

namespace {

/// The reason for facts "name=value|..."; "expected" and "found" are checksums. "^" stands for a
/// line's end and for bytes that no text has.
std::string ReasonFor(const std::string& line) {
    std::map<std::string, std::string> told{{"url", "http://h/a.zip"}};
    for (const std::string& fact : Split(ReplaceAll(line, "^", "\r\n\x01\xFF"), '|'))
        told[fact.substr(0, fact.find('='))] = fact.substr(fact.find('=') + 1);
    DownloadFacts facts;
    facts.url = told["url"];
    if (told.contains("proxy"))
        facts.proxy = {kAccessProxy, told["proxy"], 3128};
    facts.statusLine = told["status"];
    facts.announced = LeadingCount(told["announced"]);
    facts.received = LeadingCount(told["received"]);
    facts.counted = facts.statusLine == "HTTP/1.1 200 OK" && facts.announced > 0;
    facts.errorNumber = LeadingNumber(told["error"]);
    facts.errorText = told["text"];
    facts.failedHere = told.contains("here");
    facts.secondsOfSilence = static_cast<std::uint32_t>(LeadingNumber(told["silence"]));
    facts.content = told["content"];
    return told.contains("expected") ? WhyCrcDiffers(facts, told["expected"], told["found"])
                                     : WhyFailed(facts);
}

} // namespace

TEST_CASE("every way to fail has its reason, a file that differs says how") {
    test::CheckLines("download_reasons", ReasonFor);
    CHECK(ReasonFor("status=" + std::string(5000, 'x')).size() < 200);
}

TEST_CASE("the first words of a page") {
    struct Row {
        std::string content;
        const char* words;
    };
    for (const Row& row :
         {Row{"", ""}, Row{" \r\n", ""}, Row{"PK\x03\x04", ""}, Row{std::string("M\0", 2), ""},
          Row{"just  text\n", "just text"},
          Row{"\xEF\xBB\xBF<!DOCTYPE html><html><head><TITLE>Not here</TITLE>"
              "<script>if (a < b) x('</p>');</script><style>p {}</style></head>"
              "<!-- a > b --><body class=\"x\"><p>gone &amp; away&nbsp;now</p>",
              "Not here gone & away now"},
          Row{"<script>never closed", ""}, Row{"<p>half a tag <b", "half a tag"},
          Row{"caf\xC3\xA9 \"x\"", "caf? 'x'"},
          Row{"one two three four five six seven eight nine ten eleven twelve",
              "one two three four five six seven eight nine ten eleven..."},
          Row{std::string(100, 'w'),
              "wwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwww..."}}) {
        // From memory that ends with the content: the sanitizer sees a look behind it.
        const auto copy = std::make_unique<char[]>(row.content.size());
        row.content.copy(copy.get(), row.content.size());
        CHECK(PageWords({copy.get(), row.content.size()}) == row.words);
    }
    CHECK(PageWords(std::string(100'000, '<')).empty());
}
