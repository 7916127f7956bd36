#include "net/modHttpText.h"

#include "ExpectedText.h"

using namespace vesk;

TEST_CASE("addresses, requests, values of headers, and error pages") {
    using Text = std::string;
    test::CheckFunctions(
        "http_texts",
        {
            {"address",
             [](const Text& url) {
                 return HostOfUrl(url) + " " + RequestPath(url, kAccessDirect) + " " +
                        RequestPath(url, -1) + " " + RequestPath(url, kAccessProxy);
             }},
            {"requestable",
             [](const Text& url) { return Text(IsRequestable(url) ? "yes" : "no"); }},
            {"request", [](const Text& url) { return RequestText(url, kAccessDirect); }},
            {"to-proxy", [](const Text& url) { return RequestText(url, kAccessProxy); }},
            {"location", [](const Text& header) { return HeaderValue("Location", header); }},
            {"status", StatusLineOf},
            {"number", [](const Text& text) { return std::to_string(LeadingNumber(text)); }},
            {"count", [](const Text& text) { return std::to_string(LeadingCount(text)); }},
            {"page",
             [](const Text& header) {
                 const auto error = RecognizeErrorPage(header);
                 return error ? std::to_string(error->number) + " " + error->description : "none";
             }},
        });
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
