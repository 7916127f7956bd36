#include "net/clsDownloadDecisions.h"

#include <doctest/doctest.h>

using namespace vesk;

namespace {

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
        DownloadResult empty;
    };
    using enum DownloadResult;
    for (const Row& row : {Row{"5", 4, Failed}, Row{"5", 5, Done}, Row{"5", 6, Done},
                           Row{"4294967297", 2147483647, Failed}}) {
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
        CHECK(ResultOf(decisions, "12AB") == Done);
    }
}

TEST_CASE("an answer that counted stands after errors that are no answer") {
    struct Row {
        const char* urls;
        std::int32_t number; ///< 0: silence, whatever came before
        bool another;
        DownloadResult result;
    };
    using enum DownloadResult;
    for (const Row& row :
         {Row{"a", 10054, false, Done}, Row{"a", 10060, false, Done}, Row{"a", 404, false, Failed},
          Row{"a", 401, false, Failed}, Row{"a", 403, false, Failed}, Row{"a", 0, false, Failed},
          Row{"a,b", 0, false, Failed}, Row{"a,b,c", 0, true, Failed},
          Row{"a,b,c", 10060, true, Failed}}) {
        CAPTURE(row.number);
        clsDownloadDecisions decisions(row.urls);
        decisions.OnStarting(5, "HTTP/1.1 200 OK\r\n\r\n");
        CHECK((row.number == 0 ? decisions.OnSilence() : decisions.OnError(row.number)) ==
              row.another);
        CHECK(ResultOf(decisions, "12AB") == row.result);
    }
}
