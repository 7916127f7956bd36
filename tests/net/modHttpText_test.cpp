#include "net/modHttpText.h"

#include <doctest/doctest.h>

using namespace vesk;

TEST_CASE("host and request path of a URL") {
    struct Row {
        const char *url, *host, *path;
    };
    for (const Row& row :
         {Row{"http://host/dir/file.zip", "host", "/dir/file.zip"}, Row{"host", "host", "/"},
          Row{"", "", "/"}, Row{"HTTP://host/x", "HTTP:", "//host/x"},
          Row{"http://host:8080/x", "host:8080", "/x"}, Row{" http://host ", "host", "/"},
          Row{"http:///x", "", "/x"}, Row{"http://http://x", "http:", "//x"}}) {
        CAPTURE(row.url);
        CHECK(HostOfUrl(row.url) == row.host);
        CHECK(RequestPath(row.url, kAccessDirect) == row.path);
        CHECK(RequestPath(row.url, -1) == row.path);
        CHECK(RequestPath(row.url, kAccessProxy) == row.url);
    }
}

TEST_CASE("what would break a request's line is not requested") {
    for (const char c : {'\0', '\t', '\n', '\r', '\x1F', '\x7F'}) {
        CAPTURE(static_cast<int>(c));
        CHECK_FALSE(IsRequestable(std::string("http://h/a") + c + "b"));
    }
    CHECK(IsRequestable("http://h/~a%20 b?c=d&e#\xE4!"));
    CHECK(IsRequestable(""));
}

TEST_CASE("the request, byte by byte") {
    const char* const rest =
        " HTTP/1.0\r\n"
        "Accept: image/gif, image/x-xbitmap, image/jpeg, image/pjpeg, "
        "application/vnd.ms-powerpoint, application/vnd.ms-excel, application/msword, "
        "application/x-shockwave-flash, */*\r\n"
        "Referer: host\r\n"
        "User-Agent: Mozilla/4.0 (compatible; MSIE 5.5; Windows 98; Win 9x 4.90)\r\n"
        "Host: host\r\n"
        "\r\n";
    CHECK(RequestText("http://host/a.zip", kAccessDirect) == std::string("GET /a.zip") + rest);
    CHECK(RequestText("http://host/a.zip", kAccessProxy) ==
          std::string("GET http://host/a.zip") + rest);
}

TEST_CASE("a header's end is found wherever it is split") {
    const std::string text = "A: 1\r\n\r\nbody\r\n\r\n";
    for (std::size_t before = 0; before < 8; ++before) {
        CAPTURE(before);
        CHECK_FALSE(FindHeaderEnd(std::string_view(text).substr(0, before), 0));
        CHECK(FindHeaderEnd(text, before) == std::optional<std::size_t>(8));
    }
    CHECK_FALSE(FindHeaderEnd("A: 1\n\nbody", 0));
}

TEST_CASE("header values are found by name, loosely") {
    struct Row {
        const char *header, *value;
    };
    for (const Row& row :
         {Row{"HTTP/1.1 302\r\nLocation: http://other/x\r\nA: b\r\n\r\n", "http://other/x"},
          Row{"LOCATION:http://x", "http://x"}, Row{"Content-Location:  /y  \r\n", "/y"},
          Row{"X: location\r\nLocation: late\r\n", "\nLocation: late"}, Row{"location", ""},
          Row{"", ""}, Row{"Location: a\nb\rc\r\n", "a\nb\rc"}}) {
        CAPTURE(row.header);
        CHECK(HeaderValue("Location", row.header) == row.value);
    }
    CHECK(LeadingNumber("1234 bytes") == 1234);
    CHECK(LeadingNumber("99999999999999999999999") == 2147483647);
    CHECK(LeadingCount("4294967297") == 4294967297);
    CHECK(LeadingCount("99999999999999999999999") == 1'000'000'000'000'000'000);
    CHECK(StatusLineOf("HTTP/1.1 200 OK\r\nA: b\r\n\r\n") == "HTTP/1.1 200 OK");
}

TEST_CASE("error pages are told by their texts, in a fixed order") {
    struct Row {
        const char* header;
        std::int32_t number; ///< 0 for none
        const char* description;
    };
    for (const Row& row :
         {Row{"HTTP/1.1 401 Unauthorized\r\n\r\n", 401, "Unauthorized"},
          Row{"HTTP/1.1 404 NOT FOUND\r\n\r\n", 404, "File not found"},
          Row{"HTTP/1.0 200\r\nX: Error 404 - not found\r\n\r\n", 404, "File not found"},
          Row{"X: Web Site BLOCKED\r\n\r\n", 403, "Forbidden "},
          Row{"X: blocked\r\nY: 401 unauthorized\r\n\r\n", 401, "Unauthorized"},
          Row{"HTTP/1.1 500 Internal Server Error\r\n\r\n", 0, ""},
          Row{"HTTP/1.1 404 Gone\r\n\r\n", 0, ""}}) {
        CAPTURE(row.header);
        const auto error = RecognizeErrorPage(row.header);
        CHECK((error ? error->number : 0) == row.number);
        CHECK((error ? std::string(error->description) : "") == row.description);
    }
}
