#include "archive/CabBuilder.h"
#include "archive/clsZipMemberReader.h"
#include "archive/modCabDirectory.h"
#include "archive/modCabJudge.h"
#include "archive/modCabUnpack.h"
#include "archive/modMemberName.h"
#include "base/Failure.h"

#include <doctest/doctest.h>

#include <map>
#include <random>
#include <set>

using namespace vesk;
using namespace vesk::test;

namespace {

using Contents = std::map<std::string, std::string>; ///< By members' names.

/// The definition, bit by bit: nothing of the code that is tested.
std::uint32_t PlainCrc(const std::string& text) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char c : text) {
        crc ^= static_cast<std::uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

std::string TextOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool StaysInside(const std::string& name) {
    const auto path = PathInside("C:\\tree", name);
    return !path || (path->starts_with("C:\\tree\\") && path->find("\\..") == path->npos);
}

/// What an archive gives out. The sanitizers watch; what throws anything but an ordinary answer, or
/// leads out of the folder, ends the test.
Contents ZipContents(const std::string& archive) {
    Contents contents;
    MemorySource source(archive);
    std::optional<clsZipDirectory> directory;
    try {
        directory.emplace(source);
    } catch (const ArchiveProblem&) {
        return contents;
    }
    clsZipMemberReader reader(source, *directory,
                              [](bool) { return std::optional<std::string>("pass"); });
    for (const ZipMember& member : ListingOf(*directory).members) {
        REQUIRE(StaysInside(member.name));
        if (!member.refusal.empty() || member.IsFolder())
            continue;
        std::string whole = "refused";
        std::string pieces = whole;
        try {
            whole = TextOf(reader.Read(member));
            REQUIRE(PlainCrc(whole) == member.crc);
            contents[member.name] = whole;
        } catch (const ArchiveProblem&) {
        }
        try {
            std::string read;
            reader.Stream(member, [&](std::span<const std::byte> piece, std::uint64_t) {
                read += TextOf(piece);
            });
            pieces = read;
        } catch (const ArchiveProblem&) {
        }
        REQUIRE(pieces == whole);
    }
    return contents;
}

/// Takes the members that are whole.
struct Collector : CabSink {
    std::vector<std::string> texts;
    std::set<std::size_t> whole;
    std::size_t at = 0;

    bool Begin(std::size_t place) override {
        at = place;
        return true;
    }
    void Write(std::span<const std::byte> bytes) override { texts[at] += TextOf(bytes); }
    void End() override { whole.insert(at); }
};

Contents CabContents(const std::string& archive) {
    Contents contents;
    MemorySource source(archive);
    ByteWindow cabinet(source);
    CabDirectory directory;
    try {
        directory = ReadCabDirectory(cabinet);
    } catch (const Failure&) {
        return contents;
    }
    JudgeCabData(cabinet, directory, [] {});
    const std::vector<std::size_t> order = JudgeCabEntries(directory);
    for (std::size_t index = 0; index < directory.folders.size(); ++index) {
        std::vector<std::size_t> entries;
        for (const std::size_t number : order) {
            const CabEntry& entry = directory.entries[number];
            if (entry.folder == index && entry.size != 0 && entry.refusal.empty())
                entries.push_back(number);
        }
        if (entries.empty() || !IsUnpackedHere(directory.folders[index]))
            continue;
        Collector sink;
        sink.texts.resize(entries.size());
        UnpackCabFolder(cabinet, directory, directory.folders[index], entries, sink);
        for (const std::size_t place : sink.whole) {
            const CabEntry& entry = directory.entries[entries[place]];
            REQUIRE(StaysInside(entry.name));
            REQUIRE(sink.texts[place].size() == entry.size);
            contents[entry.name] = sink.texts[place];
        }
    }
    return contents;
}

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
        const auto read = isZip ? ZipContents : CabContents;
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
