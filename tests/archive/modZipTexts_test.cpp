#include "archive/modZipTexts.h"

#include <doctest/doctest.h>

using namespace vesk;

TEST_CASE("the listing has a line for each member, the summary keeps its labels to the blank") {
    ZipMember member;
    member.size = 1234567890123;
    member.dosDate = 0x5A21;
    member.dosTime = 0x63F0;
    CHECK(ListingLine(member, "sub/a\r\n.txt") ==
          "sub/a??.txt                              1234567890123  2025-01-01  12:31\r\n");
    CHECK(ListingLine(member, std::string(300, 'x')).starts_with(std::string(300, 'x') + " "));
    ZipTotals totals;
    CHECK(totals.CompressFactor() == 0);
    member.size = 1000;
    member.packedSize = 250;
    totals.Add(member);
    totals.Add(member);
    totals.commentLength = 7;
    CHECK(Summary({"1", "2", "3"}, totals) ==
          "Zip Info: 1\r\nDLL Version: 2\r\nDLL Date: 3\r\n--------------\r\n"
          "Only Shows If uExtractList = 1 List Contents\r\nComment         : 7\r\n"
          "Total Size Comp : 500\r\nTotal Size      : 2000\r\n"
          "Compress Factor : %75\r\nNum Of Members  : 2\r\n");
    member.packedSize = 5000; // data that grew
    ZipTotals grown;
    grown.Add(member);
    CHECK(grown.CompressFactor() == 0);
}
