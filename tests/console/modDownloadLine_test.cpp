#include "console/modDownloadLine.h"

#include "ExpectedText.h"

using namespace vesk;

TEST_CASE("the line on a download says what is known, waited for, and why another address failed") {
    using enum DownloadStage;
    const std::map<std::string, DownloadStage> stages = {
        {"receiving", Receiving}, {"connecting", Connecting}, {"waiting", Waiting}};
    test::CheckLines("download_lines", [&](const std::string& line) {
        const auto words = Split(line, '|'); // in the order of the fields
        const DownloadProgress progress{std::stod(words.at(0)),
                                        std::stoi(words.at(1)),
                                        std::stod(words.at(2)),
                                        std::stoll(words.at(3)),
                                        stages.at(words.at(4)),
                                        "h",
                                        static_cast<std::uint32_t>(std::stoul(words.at(5))),
                                        words.at(6)};
        return DownloadLine(progress, "a.zip");
    });
}
