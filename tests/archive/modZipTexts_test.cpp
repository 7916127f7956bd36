#include "archive/modZipTexts.h"

#include "ExpectedText.h"

using namespace vesk;

TEST_CASE("the listing has a line for each member, the summary keeps its labels to the blank") {
    ZipMember member;
    member.size = 1234567890123;
    member.dosDate = 0x5A21;
    member.dosTime = 0x63F0;
    CHECK(ListingLine(member, std::string(300, 'x')).starts_with(std::string(300, 'x') + " "));
    std::string text = ListingLine(member, "sub/a\r\n.txt");
    ZipTotals totals;
    CHECK(totals.CompressFactor() == 0);
    member.size = 1000;
    member.packedSize = 250;
    totals.Add(member);
    totals.Add(member);
    totals.commentLength = 7;
    text += Summary({"1", "2", "3"}, totals);
    test::CheckExpected("zip_messages", ReplaceAll(text, "\r\n", "^\n"));
    member.packedSize = 5000; // data that grew
    ZipTotals grown;
    grown.Add(member);
    CHECK(grown.CompressFactor() == 0);
}
