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
    const auto words = [](const std::string& content) {
        // From memory that ends with the content: the sanitizer sees a look behind it.
        const auto copy = std::make_unique<char[]>(content.size());
        content.copy(copy.get(), content.size());
        return PageWords({copy.get(), content.size()});
    };
    test::CheckFunctions("page_words", {{"page", words}});
    CHECK(PageWords(std::string(100'000, '<')).empty());
}
