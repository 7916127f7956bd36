#include "console/DownloadLine.h"

#include <doctest/doctest.h>

using namespace vesk;

TEST_CASE("the line on a download says what is known") {
    struct Row {
        DownloadProgress progress;
        const char* line;
    };
    for (const Row& row :
         {Row{{0, 0, 0, -1}, "0 B  a.zip"}, Row{{12'345, 0, 999.4, -1}, "12.3 kB  999 B/s  a.zip"},
          Row{{450, 1000, 0, -1}, "[#########-----------]  45%  450 B of 1.0 kB  a.zip"},
          Row{{27'100'000, 27'100'000, 1'100'000, 0},
              "[####################] 100%  27.1 MB of 27.1 MB  1.1 MB/s  0:00 left  a.zip"},
          Row{{999'960, 2'000'000'000, 5, 4000},
              "[--------------------]   0%  1.0 MB of 2.0 GB  5 B/s  1:06:40 left  a.zip"},
          Row{{300, 200, 10, 65},
              "[####################] 150%  300 B of 200 B  10 B/s  1:05 left  a.zip"}}) {
        CHECK(DownloadLine(row.progress, "a.zip") == row.line);
    }
}
