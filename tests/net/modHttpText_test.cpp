#include "net/modHttpText.h"

#include "ExpectedText.h"

using namespace vesk;

TEST_CASE("addresses, values of headers, and error pages") {
    test::CheckLines("http_texts", [](const std::string& line) -> std::string {
        const std::string kind = line.substr(0, line.find(' '));
        const std::string text = ReplaceAll(line.substr(kind.size() + 1), "^", "\r\n");
        if (kind == "address")
            return HostOfUrl(text) + " " + RequestPath(text, kAccessDirect) + " " +
                   RequestPath(text, -1) + " " + RequestPath(text, kAccessProxy);
        if (kind == "location")
            return ReplaceAll(HeaderValue("Location", text), "\n", "LF");
        const auto error = RecognizeErrorPage(text);
        return error ? std::to_string(error->number) + " " + std::string(error->description)
                     : "none";
    });
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

TEST_CASE("numbers at the start of a text, and the line of the status") {
    CHECK(HeaderValue("Location", "Location: a\nb\rc\r\n") == "a\nb\rc");
    CHECK(LeadingNumber("1234 bytes") == 1234);
    CHECK(LeadingNumber("99999999999999999999999") == 2147483647);
    CHECK(LeadingCount("4294967297") == 4294967297);
    CHECK(LeadingCount("99999999999999999999999") == 1'000'000'000'000'000'000);
    CHECK(StatusLineOf("HTTP/1.1 200 OK\r\nA: b\r\n\r\n") == "HTTP/1.1 200 OK");
}
