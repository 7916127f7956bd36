#include "archive/modZipTexts.h"

#include <doctest/doctest.h>

using namespace vesk;

TEST_CASE("the listing has a line for each member") {
    ZipMember member;
    member.size = 1234567890123;
    member.dosDate = 0x5A21;
    member.dosTime = 0x63F0;
    CHECK(ListingLine(member, "sub/a\r\n.txt") ==
          "sub/a??.txt                              1234567890123  2025-01-01  12:31\r\n");
    CHECK(ListingLine(member, std::string(300, 'x')).starts_with(std::string(300, 'x') + " "));
}

TEST_CASE("the summary keeps its labels to the blank") {
    ZipTotals totals;
    CHECK(totals.CompressFactor() == 0);
    ZipMember member;
    member.size = 1000;
    member.packedSize = 250;
    totals.Add(member);
    totals.Add(member);
    totals.commentLength = 7;
    const ZipVersion version;
    CHECK(Summary(version, totals) == "Zip Info: " + version.zipInfo + "\r\n" +
                                          "DLL Version: " + version.version + "\r\n" +
                                          "DLL Date: " + version.date + "\r\n" +
                                          "--------------\r\n"
                                          "Only Shows If uExtractList = 1 List Contents\r\n"
                                          "Comment         : 7\r\n"
                                          "Total Size Comp : 500\r\n"
                                          "Total Size      : 2000\r\n"
                                          "Compress Factor : %75\r\n"
                                          "Num Of Members  : 2\r\n");
    member.packedSize = 5000; // data that grew
    ZipTotals grown;
    grown.Add(member);
    CHECK(grown.CompressFactor() == 0);
}
