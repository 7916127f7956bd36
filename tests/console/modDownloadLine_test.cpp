#include "console/modDownloadLine.h"

#include <doctest/doctest.h>

using namespace vesk;

TEST_CASE("the line on a download says what is known, waited for, and why another address failed") {
    struct Row {
        double received;
        std::int32_t fileSize;
        double rate;
        std::int64_t left;
        DownloadStage stage;
        std::uint32_t silence;
        const char *lastFailure, *line;
    };
    using enum DownloadStage;
    for (const Row& row :
         {Row{0, 0, 0, -1, Receiving, 0, "", "0 B  a.zip"},
          Row{12'345, 0, 999.4, -1, Receiving, 0, "", "12.3 kB  999 B/s  a.zip"},
          Row{450, 1000, 0, -1, Receiving, 0, "",
              "[#########-----------]  45%  450 B of 1.0 kB  a.zip"},
          Row{27'100'000, 27'100'000, 1'100'000, 0, Receiving, 0, "",
              "[####################] 100%  27.1 MB of 27.1 MB  1.1 MB/s  0:00 left  a.zip"},
          Row{999'960, 2'000'000'000, 5, 4000, Receiving, 0, "",
              "[--------------------]   0%  1.0 MB of 2.0 GB  5 B/s  1:06:40 left  a.zip"},
          Row{300, 200, 10, 65, Receiving, 0, "",
              "[####################] 150%  300 B of 200 B  10 B/s  1:05 left  a.zip"},
          Row{1, 2, 3, 1, Connecting, 0, "", "connecting to h  a.zip"},
          Row{1, 2, 3, 1, Connecting, 5, "", "connecting to h, no data for 5 s  a.zip"},
          Row{1, 2, 3, 1, Waiting, 4, "g: gone", "waiting for h  a.zip  (g: gone)"},
          Row{1, 2, 3, 1, Receiving, 4, "",
              "[##########----------]  50%  1 B of 2 B  3 B/s  0:01 left  a.zip"},
          Row{1, 2, 3, 1, Receiving, 30, "",
              "[##########----------]  50%  1 B of 2 B  no data for 30 s  a.zip"}}) {
        const DownloadProgress progress{row.received, row.fileSize, row.rate,    row.left,
                                        row.stage,    "h",          row.silence, row.lastFailure};
        CHECK(DownloadLine(progress, "a.zip") == row.line);
    }
}
