#include "archive/ArchiveContents.h"

#include <doctest/doctest.h>

#include <fstream>
#include <iterator>
#include <random>
#include <set>

using namespace vesk;
using namespace vesk::test;

namespace {

/// What is damaged from here on must not pass for content: in a ZIP anything, as its directory
/// holds checksums, in a cabinet its data blocks.
std::size_t CheckedFrom(const std::string& archive, bool isZip) {
    if (isZip)
        return 0;
    MemorySource source(archive);
    clsByteWindow window(source);
    return ReadCabDirectory(window).folders[0].dataAt;
}

/// Without names, which have no checksum.
std::multiset<std::string> TextsOf(const Contents& contents) {
    std::multiset<std::string> texts;
    for (const auto& [name, text] : contents)
        texts.insert(text);
    return texts;
}

} // namespace

TEST_CASE("whatever is cut off or damaged, what comes out of an archive is whole") {
    for (const std::string kind :
         {"zip/stored_and_packed", "zip/streamed_twice", "zip/locked", "zip/fields_and_comment",
          "zip/wide_values", "cab/two_folders", "cab/two_packed_blocks", "cab/one_of_a_set"}) {
        CAPTURE(kind);
        const bool isZip = kind[0] == 'z';
        const auto read = [isZip](const std::string& bytes) {
            return isZip ? ReadZipTwice(bytes) : ReadCab(bytes);
        };
        std::ifstream file(VESK_CORPUS + kind, std::ios::binary);
        const std::string archive(std::istreambuf_iterator<char>(file), {});
        REQUIRE(!archive.empty());
        const Contents good = read(archive).Whole();
        REQUIRE(good.size() == (kind == "zip/wide_values" ? 1 : isZip ? 2 : 3));
        const std::multiset<std::string> texts = TextsOf(good);
        for (std::size_t length = 0; length < archive.size(); ++length) {
            CAPTURE(length);
            const Reading cut = read(archive.substr(0, length));
            for (const auto& [name, text] : cut.Whole()) {
                const bool isUnnamed = name == "t"; // its name stands in the directory
                REQUIRE((isUnnamed || (good.contains(name) && good.at(name) == text)));
            }
            REQUIRE((cut.Tells() || cut.Whole() == good));
            const Reading rest = read(archive.substr(length));
            REQUIRE((rest.Tells() || rest.Whole() == good));
        }
        const std::size_t checkedFrom = CheckedFrom(archive, isZip);
        std::mt19937 chance(1); // the same on every system, unlike distributions
        for (int round = 0; round < 1000; ++round) {
            CAPTURE(round);
            std::string damaged = archive;
            std::size_t first = damaged.size();
            for (unsigned count = 1 + chance() % 4; count > 0; --count) {
                const std::size_t at = chance() % damaged.size();
                damaged[at] = static_cast<char>(damaged[at] ^ (1 + chance() % 255));
                first = std::min(first, at);
            }
            const Reading found = read(damaged);
            for (const auto& [name, text] : found.Whole())
                REQUIRE((texts.contains(text) || first < checkedFrom));
            const bool isWhole = first < checkedFrom ? found.Whole().size() == good.size()
                                                     : TextsOf(found.Whole()) == texts;
            REQUIRE((found.Tells() || isWhole));
        }
    }
}
