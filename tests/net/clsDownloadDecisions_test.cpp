#include "net/clsDownloadDecisions.h"

#include <doctest/doctest.h>

using namespace vesk;

namespace {

const std::string kGood = "HTTP/1.1 200 OK\r\n\r\n";

DownloadResult ResultOf(const clsDownloadDecisions& decisions, const std::string& crc) {
    return decisions.Result(crc, [] { return std::string("12AB"); });
}

} // namespace

TEST_CASE("only an HTTP/1.1 200 OK with a length counts, and the checksum text decides") {
    struct Row {
        const char* header;
        std::int32_t size;
        const char* crc;
        DownloadResult result;
    };
    using enum DownloadResult;
    for (const Row& row :
         {Row{"HTTP/1.1 200 OK\r\n", 1, "12AB", Done},
          Row{"HTTP/1.1 200 OK\r\n", 1, "12ab", CrcDiffers},
          Row{"HTTP/1.1 200 OK\r\n", 1, "", Done}, Row{"HTTP/1.1 200 OK\r\n", 0, "12AB", Failed},
          Row{"HTTP/1.0 200 OK\r\n", 1, "12AB", Failed}, Row{"HTTP/1.1 200 Ok\r\n", 1, "", Failed},
          Row{"X: HTTP/1.1 200 OK\r\n", 1, "", Done}, Row{"", 7, "12AB", Failed}}) {
        CAPTURE(row.header);
        CAPTURE(row.crc);
        clsDownloadDecisions decisions("a");
        decisions.OnStarting(row.size, row.header);
        CHECK(ResultOf(decisions, row.crc) == row.result);
        decisions.OnCancelled();
        CHECK(ResultOf(decisions, row.crc) == Cancelled);
    }
}

TEST_CASE("the next address is tried after three kinds of error, and never the second of two") {
    struct Row {
        const char* urls;
        std::int32_t number;
        const char* next; ///< null when it is over
    };
    for (const Row& row :
         {Row{"a", 404, nullptr}, Row{"a,b", 404, nullptr}, Row{" a , b ,c", 404, "b"},
          Row{"a,b,c", 10060, "b"}, Row{"a,,c", 11004, ""}, Row{"a,b,c", 401, nullptr},
          Row{"a,b,c", 10061, nullptr}, Row{"a,b,c", 11001, nullptr}, Row{"", 404, nullptr}}) {
        CAPTURE(row.urls);
        CAPTURE(row.number);
        clsDownloadDecisions decisions(row.urls);
        const std::string first = decisions.Url();
        CHECK(first == (*row.urls == '\0' ? "" : "a"));
        CHECK(decisions.OnError(row.number) == (row.next != nullptr));
        CHECK(decisions.Url() == (row.next != nullptr ? row.next : first));
    }
    clsDownloadDecisions walk("a,b,c");
    CHECK(walk.OnError(404));
    CHECK(walk.OnError(10060));
    CHECK(walk.Url() == "c");
    CHECK_FALSE(walk.OnError(404));
}

TEST_CASE("without a checksum a file that is shorter than announced failed") {
    struct Row {
        const char* length;
        std::int32_t received;
        DownloadResult empty, withCrc;
    };
    using enum DownloadResult;
    for (const Row& row : {Row{"5", 4, Failed, Done}, Row{"5", 5, Done, Done},
                           Row{"5", 6, Done, Done}, Row{"4294967297", 2147483647, Failed, Done}}) {
        CAPTURE(row.length);
        CAPTURE(row.received);
        clsDownloadDecisions decisions("a,b,c");
        decisions.OnStarting(9, "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n");
        decisions.OnDataArrival(9); // from an address that another one replaces
        CHECK(decisions.OnError(10060));
        CHECK_FALSE(decisions.IsShort());
        decisions.OnStarting(5, std::string("HTTP/1.1 200 OK\r\nContent-Length: ") + row.length +
                                    "\r\n\r\n");
        decisions.OnDataArrival(row.received);
        CHECK(ResultOf(decisions, "") == row.empty);
        CHECK(ResultOf(decisions, "12AB") == row.withCrc);
    }
}

TEST_CASE("a silent server is one that does not answer, whatever it sent before") {
    for (const auto& [urls, another] : {std::pair{"a", false}, {"a,b", false}, {"a,b,c", true}}) {
        clsDownloadDecisions decisions(urls);
        decisions.OnStarting(5, kGood);
        CHECK(decisions.OnSilence() == another);
        CHECK(ResultOf(decisions, "12AB") == DownloadResult::Failed);
    }
}

TEST_CASE("an answer that counted stands after errors that are no answer") {
    using enum DownloadResult;
    for (const auto& [number, result] :
         {std::pair{10054, Done}, {10060, Done}, {404, Failed}, {401, Failed}, {403, Failed}}) {
        CAPTURE(number);
        clsDownloadDecisions decisions("a");
        decisions.OnStarting(5, kGood);
        CHECK_FALSE(decisions.OnError(number));
        CHECK(ResultOf(decisions, "12AB") == result);
    }
    clsDownloadDecisions mirrors("a,b,c");
    mirrors.OnStarting(5, kGood);
    CHECK(mirrors.OnError(10060));
    CHECK(ResultOf(mirrors, "") == Failed);
}
