#include "net/modDownloadText.h"

#include "net/clsTransferRate.h"

#include <doctest/doctest.h>

using namespace vesk;

TEST_CASE("caption, percentage and bar for a count") {
    const DigitGrouping dotted = [](const std::string& digits) {
        return digits.size() > 3 ? std::string(digits).insert(digits.size() - 3, ".") : digits;
    };
    struct Row {
        double received;
        std::int32_t size;
        const char *caption, *percent;
        double width;
    };
    for (const Row& row :
         {Row{0, 12345000, "Downloading - 0 Bytes of 12.345 Mb", " 0%", 0},
          Row{400, 998, "Downloading - 0 Bytes of 1 Bytes", " 40%", 40 * 38.85},
          Row{999, 999999, "Downloading - 1 Kb of 1.000 Mb", " 0%", 0},
          Row{999998, 999998, "Downloading - 1.000 Kb of 1.000 Kb", " 100%", 3885},
          Row{500, 1500, "Downloading - 1 Bytes of 2 Kb", " 33%", 33 * 38.85},
          Row{12345000, 24690001, "Downloading - 12.345 Mb of 24.690 Mb", " 49%", 49 * 38.85},
          Row{300, 200, "Downloading - 0 Bytes of 0 Bytes", " 150%", 150 * 38.85}}) {
        CAPTURE(row.caption);
        CHECK(DownloadCaption(row.received, row.size, dotted) == row.caption);
        const std::string percent = PercentText(row.received, row.size);
        CHECK(percent == row.percent);
        CHECK(BarWidth(percent) == doctest::Approx(row.width));
    }
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
