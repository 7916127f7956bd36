#include "catalogue/modSha256Text.h"

#include <doctest/doctest.h>

using namespace vesk;

namespace {

const std::string kOne(64, 'a');
const std::string kTwo = "0123456789ABCDEFabcdef" + std::string(42, '7');

} // namespace

TEST_CASE("a list of digests is read as sha256sum writes it, and what is not is told") {
    const Sha256Text list =
        ParseSha256Text("# of today\r\n" + kOne + "  one.ZIP\r\n\n" + kTwo + " *two words.cab\n" +
                        kOne + "  one.zip\n" + kOne + "  last.zip");
    CHECK(list.faults.empty());
    CHECK(list.digests == std::map<std::string, std::string>{
                              {"one.zip", kOne},
                              {"two words.cab", "0123456789abcdefabcdef" + std::string(42, '7')},
                              {"last.zip", kOne}});
    for (const std::string& line :
         {kOne, kOne + "  ", kOne + " one.zip", kOne + "a  one.zip", "g" + kOne.substr(1) + "  o",
          " " + kOne + "  one.zip", kOne.substr(1) + "  one.zip", "\xEF\xBB\xBF" + kOne + "  o"}) {
        CAPTURE(line);
        const Sha256Text bad = ParseSha256Text("\n" + line + "\n");
        CHECK(bad.digests.empty());
        REQUIRE(bad.faults.size() == 1);
        CHECK(bad.faults[0] == "line 2 is not a SHA-256 digest and a name");
    }
    for (const std::string name : {"dist/x.zip", "./x.zip", "x.zip ", " x.zip", "c:x.zip"}) {
        const Sha256Text lost = ParseSha256Text(kOne + "  " + name + "\n");
        CHECK(lost.digests.empty());
        CHECK(lost.faults ==
              std::vector<std::string>{"line 1 names no file in the program folder: " + name});
    }
    const Sha256Text both = ParseSha256Text(kOne + "  a.zip\n" + kTwo + "  A.zip\n");
    CHECK(both.faults.size() == 1);
    CHECK(both.digests.at("a.zip").size() != kOne.size()); // no file is right
}

TEST_CASE("a digest takes its line in a list, and nothing else changes") {
    const std::string own = kOne + " *b.zip";
    CHECK(WithSha256("", "b.zip", kOne) == own + "\n");
    CHECK(WithSha256("# x\r\n" + kTwo + "  B.zip\r\nodd\r\n", "b.zip", kOne) ==
          "# x\r\n" + own + "\r\nodd\r\n");
    CHECK(WithSha256(kTwo + "  a.zip", "b.zip", kOne) == kTwo + "  a.zip\n" + own + "\n");
    CHECK(WithSha256(kTwo + "  b.zip\n" + kTwo + "  a\n" + kOne + "  b.zip\n", "b.zip", kOne) ==
          own + "\n" + kTwo + "  a\n");
}
