#include "archive/ArchiveContents.h"
#include "archive/CabBuilder.h"

#include <doctest/doctest.h>

#include <random>
#include <set>

using namespace vesk;
using namespace vesk::test;

namespace {

/// An archive of each kind that the builders make.
struct Kind {
    const char* name;
    std::string archive;
    std::size_t checkedFrom; ///< Behind this no damage may pass for content, nor in a ZIP at all.
    std::size_t members;
};

std::vector<Kind> Kinds() {
    TestMember packed = TestMember::Packed("packed", kFirst);
    packed.data = kFirstPacked.substr(2);
    TestMember timed = TestMember::Packed("t", "times");
    timed.extra = Extra(10, U32(0) + U16(1) + U16(24) + U64(1) + U64(2) + U64(3)) +
                  Extra(0x7075, U8(1) + U32(CrcOf("t")) + "u");
    TestMember large = packed; // its wide values
    large.name = "wide";
    large.packedSize = large.offset = 0xFFFFFFFF;
    large.extra = Extra(1, U64(large.data.size()) + U64(0));
    TestEnd wide;
    wide.wide = true;
    wide.comment = "note";
    std::vector<Kind> kinds;
    const auto addZip = [&](const char* name, const std::vector<TestMember>& members,
                            const TestEnd& end = {}) {
        kinds.push_back({name, MakeZip(members, end), 0, members.size()});
    };
    addZip("stored and packed", {TestMember::Stored("a/b", "stored"), packed});
    addZip("streamed", {TestMember::Streamed("one", "11"), TestMember::Streamed("two", "2222")});
    addZip("locked", {TestMember::Encrypted("c"), TestMember::Encrypted("d")});
    addZip("fields and comment", {timed, packed}, wide);
    addZip("wide values", {large}, wide);
    const auto addCab = [&](const char* name, const TestCab& cab) {
        std::size_t data = 0;
        for (const TestFolderData& folder : cab.folders)
            for (const TestBlock& block : folder.blocks)
                data += 8 + cab.blockReserve.size() + block.data.size();
        kinds.push_back({name, cab.Bytes(), cab.Bytes().size() - data, cab.members.size()});
    };
    TestCab stored = TestCab::Of({{"a", "11"}, {"b\\c", "2222"}});
    stored.folders.push_back({.blocks = {{kFirst}, {kSecond}}});
    stored.members.push_back({.name = "d", .size = 114, .folder = 1});
    addCab("stored cabinet", stored);
    addCab("packed cabinet", TestCab::Mszip());
    stored.headerReserve = "reserved";
    stored.folderReserve = "fff";
    stored.blockReserve = "bb";
    stored.next = "next.cab";
    addCab("cabinet with reserves, one of a set", stored);
    return kinds;
}

} // namespace

TEST_CASE("whatever is cut off or damaged, what comes out of an archive is whole") {
    for (const Kind& kind : Kinds()) {
        CAPTURE(kind.name);
        const bool isZip = kind.archive[0] == 'P';
        const auto read = [isZip](const std::string& bytes) {
            return isZip ? ZipContents(bytes) : ReadCab(bytes).Whole();
        };
        const Contents good = read(kind.archive);
        REQUIRE(good.size() == kind.members);
        std::set<std::string> texts;
        for (const auto& [name, text] : good)
            texts.insert(text);
        for (std::size_t length = 0; length < kind.archive.size(); ++length) {
            CAPTURE(length);
            for (const auto& [name, text] : read(kind.archive.substr(0, length))) {
                const bool isUnnamed = isZip && name == "t"; // its name stands in the directory
                REQUIRE((isUnnamed || (good.contains(name) && good.at(name) == text)));
            }
            read(kind.archive.substr(length));
        }
        std::mt19937 chance(1); // the same on every system, unlike distributions
        for (int round = 0; round < 1000; ++round) {
            CAPTURE(round);
            std::string damaged = kind.archive;
            std::size_t first = damaged.size();
            for (unsigned count = 1 + chance() % 4; count > 0; --count) {
                const std::size_t at = chance() % damaged.size();
                damaged[at] = static_cast<char>(damaged[at] ^ (1 + chance() % 255));
                first = std::min(first, at);
            }
            for (const auto& [name, text] : read(damaged))
                REQUIRE((texts.contains(text) || first < kind.checkedFrom));
        }
    }
}
