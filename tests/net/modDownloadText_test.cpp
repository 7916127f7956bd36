#include "net/modDownloadText.h"

#include "ExpectedText.h"
#include "net/clsTransferRate.h"

using namespace vesk;

TEST_CASE("caption, percentage and bar for a count") {
    const DigitGrouping dotted = [](const std::string& digits) {
        return digits.size() > 3 ? std::string(digits).insert(digits.size() - 3, ".") : digits;
    };
    test::CheckLines("download_captions", [&](const std::string& line) {
        const auto counts = Split(line, ' '); // received, and of how many
        const double received = std::stod(counts.at(0));
        const std::int32_t size = std::stoi(counts.at(1));
        const std::string percent = PercentText(received, size);
        return DownloadCaption(received, size, dotted) + "," + percent + ", " +
               std::to_string(BarWidth(percent));
    });
}

TEST_CASE("the rate is that of the last seconds, across a wrap of the clock") {
    clsTransferRate rate;
    CHECK(rate.BytesPerSecond() == 0);
    CHECK_FALSE(rate.SecondsLeft(100));
    const std::uint32_t start = 0xFFFFFF00;
    rate.Add(0, start);
    rate.Add(0, start);
    CHECK(rate.BytesPerSecond() == 0);
    for (std::uint32_t ms = 10; ms <= 10000; ms += 10)
        rate.Add(ms <= 4000 ? ms * 10.0 : 40000 + (ms - 4000) * 1.0, start + ms);
    CHECK(rate.BytesPerSecond() == doctest::Approx(1000).epsilon(0.01));
    CHECK(rate.SecondsLeft(46000 + 2500) == std::optional<std::int64_t>(3));
    CHECK(rate.SecondsLeft(46000) == std::optional<std::int64_t>(0));
    CHECK_FALSE(rate.SecondsLeft(0));
    double before = rate.BytesPerSecond();
    for (std::uint32_t ms = 11000; ms <= 14500; ms += 500) { // nothing comes any more
        rate.Add(46000, start + ms);
        CHECK(rate.BytesPerSecond() < before);
        before = rate.BytesPerSecond();
    }
    rate.Add(46000, start + 15500);
    CHECK(rate.BytesPerSecond() == 0);
    CHECK_FALSE(rate.SecondsLeft(48500));
}
