#include "net/modDownloadReason.h"

#include <doctest/doctest.h>

#include <memory>

using namespace vesk;

namespace {

DownloadFacts Facts(const char* statusLine, std::int64_t announced, std::int64_t received) {
    DownloadFacts facts;
    facts.url = "http://h/a.zip";
    facts.statusLine = statusLine;
    facts.counted = std::string_view(statusLine) == "HTTP/1.1 200 OK" && announced > 0;
    facts.announced = announced;
    facts.received = received;
    return facts;
}

DownloadFacts Error(DownloadFacts facts, std::int32_t number, const char* text) {
    facts.errorNumber = number;
    facts.errorText = text;
    return facts;
}

DownloadFacts Here(DownloadFacts facts) {
    facts.failedHere = true;
    return facts;
}

DownloadFacts Silent(DownloadFacts facts) {
    facts.secondsOfSilence = 120;
    return facts;
}

DownloadFacts From(DownloadFacts facts, const char* url) {
    facts.url = url;
    return facts;
}

DownloadFacts Holding(DownloadFacts facts, const char* content) {
    facts.content = content;
    return facts;
}

DownloadFacts ByProxy(DownloadFacts facts) {
    facts.proxy = {kAccessProxy, "p", 3128};
    return facts;
}

const DownloadFacts kNoAnswer = Facts("", 0, 0);
const DownloadFacts kNotFound = Error(Facts("HTTP/1.1 404 Not Found", 9, 0), 404, "File not found");
const DownloadFacts kUnknown = Error(kNoAnswer, 11001, "Host not found.");

} // namespace

TEST_CASE("every way to fail has its reason") {
    struct Row {
        DownloadFacts facts;
        const char* reason;
    };
    const char* const ok = "HTTP/1.1 200 OK";
    for (const Row& row :
         {Row{kNotFound, "h port 80: HTTP/1.1 404 Not Found"},
          Row{ByProxy(kNotFound), "h through proxy p port 3128: HTTP/1.1 404 Not Found"},
          Row{Error(Facts("HTTP/1.1 200 OK", 1, 0), 403, "Forbidden "),
              "h port 80: forbidden, 0 of 1 bytes came"},
          Row{Error(Facts("HTTP/1.1 200 No", 0, 0), 403, "Forbidden "),
              "h port 80: HTTP/1.1 200 No, forbidden"},
          Row{Error(kNoAnswer, 10061, "Connection refused."), "h port 80: connection refused"},
          Row{kUnknown, "h: host not found"}, Row{ByProxy(kUnknown), "proxy p: host not found"},
          Row{From(kUnknown, "/next"), "\"/next\": the address names no host"},
          Row{From(Here(Error(kNoAnswer, 400, "The address is bad")), "http://h/a\r\nb"),
              "\"http://h/a b\": the address is bad"},
          Row{Here(Error(Facts(ok, 1'234'567, 1'000), 112, "cannot write C:\\x: Disk full.")),
              "cannot write C:\\x: Disk full, 1,000 of 1,234,567 bytes came"},
          Row{Error(Facts(ok, 4096, 512), 10054, "Connection reset by peer."),
              "h port 80: connection reset by peer, 512 of 4,096 bytes came"},
          Row{Silent(kNoAnswer), "h port 80: no data for 120 s"},
          Row{Silent(Facts(ok, 4096, 512)),
              "h port 80: no data for 120 s, 512 of 4,096 bytes came"},
          Row{Holding(Facts("HTTP/1.1 500 No\x01\xFF\xFF\"", 7, 7), "<b>Sorry</b>"),
              "h port 80: HTTP/1.1 500 No ?', a page came instead: \"Sorry\""},
          Row{kNoAnswer, "h port 80: the connection was closed without an answer"},
          Row{Holding(Facts("", 5, 5), "hello"),
              "h port 80: the answer has no HTTP header, a text came instead: \"hello\""}}) {
        CHECK(WhyFailed(row.facts) == row.reason);
    }
    CHECK(WhyFailed(Facts(std::string(5000, 'x').c_str(), 0, 0)).size() < 200);
}

TEST_CASE("a file that differs says how, unless bytes are missing") {
    const char* const ok = "HTTP/1.1 200 OK";
    CHECK(WhyCrcDiffers(Facts(ok, 2, 2), "12AB", "CD") ==
          "h port 80: CRC differs, expected 12AB, found CD");
    CHECK(WhyCrcDiffers(Facts(ok, 2, 6), "1\r\n2", "CD") ==
          "h port 80: CRC differs, expected 1 2, found CD, 6 bytes came and 2 were announced");
    CHECK(WhyCrcDiffers(Facts(ok, 4096, 512), "12AB", "CD") ==
          "h port 80: 512 of 4,096 bytes came");
    CHECK(WhyCrcDiffers(Holding(Facts(ok, 2, 2), " <title>Log in"), "12AB", "") ==
          "h port 80: CRC differs, expected 12AB, found none, a page came instead: \"Log in\"");
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
