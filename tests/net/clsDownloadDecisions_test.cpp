#include "net/clsDownloadDecisions.h"

#include "ExpectedText.h"
#include "net/modHttpText.h"

using namespace vesk;

namespace {

/// What is decided in a download of "ADDRESSES|EVENT NUMBER HEADER|...", and what it comes to for
/// the checksum that the file has, another one, and none. "^" stands for a line's end.
std::string DecidedIn(const std::string& line) {
    const std::vector<std::string> events = Split(ReplaceAll(line, "^", "\r\n"), '|');
    clsDownloadDecisions decisions(events[0]);
    std::string text;
    for (std::size_t i = 1; i < events.size(); ++i) {
        const std::string event = events[i].substr(0, events[i].find(' '));
        const std::string rest = events[i].substr(std::min(event.size() + 1, events[i].size()));
        const std::int32_t number = LeadingNumber(rest);
        if (event == "start")
            decisions.OnStarting(number, rest.substr(std::min(rest.find(' '), rest.size())));
        else if (event == "data")
            decisions.OnDataArrival(number);
        else if (event == "cancel")
            decisions.OnCancelled();
        else
            text += (event == "silence" ? decisions.OnSilence() : decisions.OnError(number))
                        ? "next \"" + decisions.Url() + "\", "
                        : "over at \"" + decisions.Url() + "\", ";
    }
    text += decisions.IsShort() ? "short" : decisions.IsEndless() ? "endless" : "";
    for (const char* crc : {"12AB", "12ab", ""}) {
        constexpr const char* kResults[] = {" differs", " done", " failed", " cancelled"};
        const DownloadResult result = decisions.Result(crc, [] { return std::string("12AB"); });
        text += kResults[static_cast<std::size_t>(result)];
    }
    return text;
}

} // namespace

TEST_CASE("which address is next, and what counts as success") {
    test::CheckLines("downloads_decided", DecidedIn);
}
