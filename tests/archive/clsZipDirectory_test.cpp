#include "archive/clsZipDirectory.h"

#include "archive/MemorySource.h"
#include "archive/ZipBuilder.h"

#include <doctest/doctest.h>

using namespace vesk;
using namespace vesk::test;

namespace {

ZipListing Read(const std::string& archive) {
    MemorySource source(archive);
    clsZipDirectory directory(source);
    return ListingOf(directory);
}

ZipMember ReadOne(const TestMember& member) {
    const std::string archive = MakeZip({member});
    const ZipListing directory = Read(archive);
    REQUIRE(directory.members.size() == 1);
    CHECK(directory.problem.empty());
    return directory.members[0];
}

/// A good member with one thing changed.
template <class Change>
TestMember Changed(Change change) {
    TestMember member = TestMember::Packed("a.txt", "text");
    change(member);
    return member;
}

/// A good member of which one value is in the extra field of wide values.
TestMember Wide(const std::string& value, std::optional<std::uint32_t> TestMember::*narrow) {
    TestMember member = TestMember::Packed("a.txt", "text");
    member.*narrow = 0xFFFFFFFF;
    member.extra = Extra(1, value);
    return member;
}

const TestMember kOne = TestMember::Stored("one", "11");
const TestMember kTwo = TestMember::Packed("folder/two", "2222");

} // namespace

TEST_CASE("the archive is found whatever stands around it") {
    TestEnd wide;
    wide.wide = true;
    TestEnd commented;
    commented.comment = std::string("PK\5\6 is no end record, ") + std::string(30, '!');
    for (const TestEnd& end : {TestEnd(), commented, wide})
        for (const char* before : {"", "MZ junk in front"})
            for (const char* after : {"", "behind"}) {
                const ZipListing directory = Read(before + MakeZip({kOne, kTwo}, end) + after);
                REQUIRE(directory.members.size() == 2);
                CHECK(directory.problem.empty());
                CHECK(directory.comment == end.comment);
                CHECK(directory.members[1].headerAt ==
                      std::string(before).size() + 30 + kOne.name.size() + kOne.data.size());
            }
    CHECK(Read(MakeZip({})).members.empty());
}

TEST_CASE("a wrong position of the directory does not hide the members") {
    TestEnd wrong;
    wrong.offset = 5;
    for (const ZipMember& member : Read(MakeZip({kOne, kTwo}, wrong)).members)
        CHECK(member.refusal == "");
}

TEST_CASE("a directory that holds nothing of what was promised is no directory") {
    TestEnd none;
    none.size = 0;
    const ZipListing directory = Read(MakeZip({kOne, kTwo}, none));
    CHECK(directory.members.size() == 2);
    CHECK(directory.problem.find("its end is missing or damaged") == 0);
}

TEST_CASE("what is no archive, or not all of one, is said to be so") {
    TestEnd secondDisk;
    secondDisk.disk = 1;
    const std::string good = MakeZip({kOne});
    const std::string endRecord = good.substr(good.size() - 22);
    for (const std::string& bytes :
         {std::string(), std::string(100'000, 'P'), endRecord,
          "junk" + good.substr(0, good.size() - 22), MakeZip({kOne}, secondDisk)}) {
        CAPTURE(bytes.size());
        CHECK_THROWS_AS(Read(bytes), ArchiveProblem);
    }
    TestEnd tooMany; // one that breaks off gives what it holds
    tooMany.count = 5;
    const ZipListing directory = Read(MakeZip({kOne, kTwo}, tooMany));
    CHECK(directory.members.size() == 2);
    CHECK(directory.problem.find("2 readable members, its end record says 5") != std::string::npos);
}

TEST_CASE("an archive cut short gives what its members' own headers tell") {
    const TestMember streamed = TestMember::Streamed("streamed\xC3\xA4", "text");
    TestMember wide = streamed;
    wide.name = "wide";
    wide.data = "PK\7\x08" + wide.data; // a mark that is none
    wide.behind = U32(0x08074B50) + U32(wide.crc) + U64(wide.data.size()) + U64(4);
    const std::string archive =
        MakeZip({kOne, streamed, wide, TestMember::Stored("folder/", ""), kTwo});
    const std::size_t central = archive.find("PK\1\2");
    for (const std::size_t length : {central, central + 100, archive.size() - 23}) {
        const ZipListing directory = Read(archive.substr(0, length));
        REQUIRE(directory.members.size() == 5);
        CHECK(directory.problem.find("5 members") != std::string::npos);
        const std::vector<ZipMember>& members = directory.members;
        CHECK(members[0].crc == kOne.crc);
        CHECK(members[1].crc == streamed.crc);
        CHECK(members[1].packedSize == streamed.data.size());
        CHECK(members[1].encoding == NameEncoding::Utf8);
        CHECK(members[2].packedSize == wide.data.size());
        CHECK(members[3].IsFolder());
        for (const ZipMember& member : members)
            CHECK(member.refusal == "");
    }
    const ZipListing half = Read(archive.substr(0, central - 1)); // in the last member's data
    REQUIRE(half.members.size() == 5);
    CHECK(half.members[4].refusal == "its data reaches beyond the archive");
    const ZipListing open = Read(archive.substr(0, archive.find("PK\7\x08") + 15));
    REQUIRE(open.members.size() == 2);
    CHECK(open.members[1].refusal.find("its end cannot be found") == 0);
    // Where it ends is not known, so what stands in it is not taken for a member.
    const std::string first = archive.substr(0, archive.find("PK\3\4", 4));
    CHECK(Read(archive.substr(0, archive.find(streamed.data)) + first).members.size() == 2);
}

TEST_CASE("members are found in any order, whatever stands between their records") {
    std::vector<TestMember> members;
    for (int number = 0; number < 100; ++number)
        members.push_back(TestMember::Stored(std::to_string(number), "x"));
    std::string archive = MakeZip(members);
    // More than is fetched at once, and a record that claims to be larger than the directory.
    const std::string junk = std::string(40'000, 'P') + "PK\1\2" + std::string(46, '\xFF');
    for (const char* before : {"7", "42"})
        archive.insert(archive.rfind("PK\1\2", archive.rfind(before)), junk);
    TestEnd end; // of the directory with the junk
    end.size = static_cast<std::uint32_t>(archive.size() - 22 - archive.find("PK\1\2"));
    end.count = 100;
    archive.resize(archive.size() - 22);
    archive += MakeZip({}, end);
    MemorySource source(archive);
    clsZipDirectory directory(source);
    REQUIRE(directory.Count() == 100);
    for (std::size_t i = 0; i < 300; ++i)
        CHECK(directory.Described(i * 37 % 100).name == std::to_string(i * 37 % 100));
}

TEST_CASE("the end of a streamed member is found across the border of what is fetched at once") {
    for (const std::size_t signatureAt : {262'141U, 262'142U, 262'143U, 262'144U, 262'145U}) {
        TestMember member = TestMember::Stored("a", std::string(signatureAt - 31, 'x'));
        member.flags = 8;
        member.behind =
            U32(0x08074B50) + U32(member.crc) + U32(member.data.size()) + U32(member.data.size());
        const std::string archive = MakeZip({member});
        const ZipListing directory = Read(archive.substr(0, archive.find("PK\1\2")));
        REQUIRE(directory.members.size() == 1);
        CHECK(directory.members[0].packedSize == member.data.size());
    }
}

TEST_CASE("behind a damaged record of the directory the others are read") {
    std::string archive = MakeZip({kOne, kTwo, TestMember::Stored("three", "333")});
    const std::size_t second = archive.find("PK\1\2", archive.find("PK\1\2") + 1);
    for (const auto& [at, bytes] : {std::pair<std::size_t, std::string>{0, "XX"},
                                    {28, "\xFF\xFF"}}) { // its mark; the length of its name
        std::string damaged = archive;
        damaged.replace(second + at, 2, bytes);
        const ZipListing directory = Read(damaged);
        REQUIRE(directory.members.size() == 2);
        CHECK(directory.members[1].name == "three");
        CHECK(directory.members[1].refusal == "");
        CHECK(directory.problem.find("2 readable members, its end record says 3") !=
              std::string::npos);
    }
}

TEST_CASE("what is a folder") {
    struct Row {
        const char* name;
        std::uint8_t host; ///< 0 MS-DOS, 3 Unix
        std::uint32_t attributes;
        bool folder;
    };
    for (const Row& row :
         {Row{"a/", 0, 0, true}, Row{"a\\", 0, 0, true}, Row{"a", 0, 0, false},
          Row{"a", 0, 0x10, true}, Row{"a", 11, 0x30, true}, Row{"a", 3, 0x10, false},
          Row{"a", 3, 0x41ED0000, true}, Row{"a", 0, 0x81A40010, false}}) {
        CAPTURE(row.attributes);
        TestMember member = TestMember::Stored(row.name, "");
        member.host = row.host;
        member.attributes = row.attributes;
        CHECK(ReadOne(member).IsFolder() == row.folder);
    }
}

TEST_CASE("bits that mean nothing, or something else, make no special file") {
    using Row = std::pair<std::uint8_t, std::uint32_t>;
    for (const auto& [host, attributes] : {Row(0, 0x620), Row(0, 0x20000020), Row(0, 0x1FFF0020),
                                           Row(3, 0x81A40400), Row(1, 0x20000000)}) {
        CAPTURE(attributes);
        TestMember member = kOne;
        member.host = host;
        member.attributes = attributes;
        CHECK(ReadOne(member).refusal.empty());
    }
}

TEST_CASE("members that must not be extracted are refused one by one") {
    struct Row {
        const char* reason;
        TestMember member;
    };
    const std::vector<Row> rows = {
        // Unix file types in the upper half: symbolic link, device; a folder's name changes nothing
        {"is a link", Changed([](TestMember& m) { m.attributes = 0xA1FF0000; })},
        {"special file", Changed([](TestMember& m) { m.attributes = 0x21B60000, m.host = 3; })},
        {"is a link", Changed([](TestMember& m) { m.name = "a/", m.attributes = 0xA1FF0000; })},
        {"method 12 (bzip2)", Changed([](TestMember& m) { m.method = 12; })},
        {"method 1234 (unknown)", Changed([](TestMember& m) { m.method = 1234; })},
        {"kind of encryption", Changed([](TestMember& m) { m.flags = 1 | 1 << 6; })},
        {"is a patch", Changed([](TestMember& m) { m.flags = 1 << 5; })},
        {"another disk", Changed([](TestMember& m) { m.disk = 2; })},
        // more than deflate can make of nine bytes; stored with another size than the data's
        {"size is impossible", Changed([](TestMember& m) { m.size = 9 * 1032 + 1; })},
        {"size is impossible", Changed([](TestMember& m) { m.method = 0; })},
        // encrypted, yet no room for the header of twelve bytes
        {"encryption header", Changed([](TestMember& m) { m.flags = 1; })},
        {"beyond the archive", Changed([](TestMember& m) { m.packedSize = 200; })},
        {"beyond the archive", Changed([](TestMember& m) { m.packedSize = 0xFFFFFFFE; })},
        {"outside the archive", Changed([](TestMember& m) { m.offset = 0xFFFFFFF0; })},
        {"header is damaged", Changed([](TestMember& m) { m.offset = 1; })},
        {"header is damaged", Changed([](TestMember& m) { m.localSignature = 0x04034B51; })},
        // wide values: cut short, so the saturated one stays; the largest there is
        {"beyond the archive", Wide("1234", &TestMember::packedSize)},
        {"beyond the archive", Wide(U64(~0ULL), &TestMember::packedSize)},
        {"outside the archive", Wide(U64(~0ULL), &TestMember::offset)},
    };
    for (const Row& row : rows) {
        CAPTURE(row.reason);
        const ZipListing directory = Read(MakeZip({row.member, kOne}));
        REQUIRE(directory.members.size() == 2);
        CHECK(directory.members[0].refusal.find(row.reason) != std::string::npos);
        CHECK(directory.members[1].refusal.empty());
    }
}

TEST_CASE("data that two members share is given to the first only") {
    const std::string inner = MakeZip({TestMember::Packed("inner", "x")});
    // The second record points to the first one's local header.
    TestMember twin = kTwo;
    twin.offset = 0;
    // The third points to a whole local header inside the first one's data.
    const TestMember carrier = TestMember::Stored("carrier", inner);
    TestMember quoted = TestMember::Packed("inner", "x");
    quoted.offset = 30 + 7;
    // The fourth claims a byte too many and so reaches into the fifth.
    TestMember greedy = TestMember::Packed("greedy", "x");
    greedy.packedSize = static_cast<std::uint32_t>(greedy.data.size() + 1);
    const ZipListing directory = Read(MakeZip({carrier, twin, quoted, greedy, kOne}));
    std::vector<std::string> refusals;
    for (const ZipMember& member : directory.members)
        refusals.push_back(member.refusal);
    const std::string overlaps = "it overlaps another member";
    CHECK(refusals == std::vector<std::string>{"", overlaps, overlaps, "", overlaps});
}

TEST_CASE("wide sizes and positions are taken where the narrow ones are saturated") {
    TestMember member = TestMember::Packed("a", "text");
    const std::uint64_t packed = member.data.size();
    member.size = 0xFFFFFFFF;
    member.packedSize = member.offset = 0xFFFFFFFF;
    member.extra = Extra(0x9999, "other") + Extra(1, U64(4) + U64(packed) + U64(0));
    const ZipMember read = ReadOne(member);
    CHECK(read.size == 4);
    CHECK(read.packedSize == packed);
    CHECK(read.refusal.empty());
}

TEST_CASE("which code page a name is in") {
    struct Row {
        std::uint8_t host; ///< 0 MS-DOS, 3 Unix, 10 Windows
        std::uint16_t flags;
        const char* name;
        NameEncoding encoding;
    };
    for (const Row& row :
         {Row{0, 0x800, "plain", NameEncoding::Ascii}, Row{0, 0, "\x84", NameEncoding::Oem},
          Row{10, 0, "\x84", NameEncoding::Oem}, Row{3, 0, "\xE4", NameEncoding::Ansi},
          Row{3, 0, "\xC3\xA4", NameEncoding::Utf8}, Row{3, 0, "\xE2\x82", NameEncoding::Ansi},
          Row{3, 0, "\xC3z", NameEncoding::Ansi}, Row{3, 0x800, "\xC3\xA4", NameEncoding::Utf8}}) {
        CAPTURE(row.name);
        TestMember member = TestMember::Stored(row.name, "x");
        member.host = row.host;
        member.flags = row.flags;
        CHECK(ReadOne(member).encoding == row.encoding);
    }
    const auto nameOf = [](const std::string& crcOf, const std::string& unicodeName) {
        TestMember member = TestMember::Stored("\x84", "x");
        member.extra = Extra(0x7075, U8(1) + U32(CrcOf(crcOf)) + unicodeName);
        return ReadOne(member).name;
    };
    CHECK(nameOf("\x84", "\xC3\xA4") == "\xC3\xA4");
    CHECK(nameOf("other", "\xC3\xA4") == "\x84");
    CHECK(nameOf("\x84", "") == "\x84");
    CHECK(nameOf("\x84", "\xC3") == "\x84"); // no UTF-8
}

TEST_CASE("times come from the finest field there is") {
    const std::uint64_t second1970 = 116444736000000000;
    const std::string unixTime = Extra(0x5455, U8(1) + U32(5));
    const std::string before1970 = Extra(0x5455, U8(1) + U32(0xFFFFFFFF));
    const std::string ntfs = Extra(10, U32(0) + U16(1) + U16(24) + U64(111) + U64(222) + U64(0));
    const auto timesOf = [](const std::string& extra) {
        TestMember member = kOne;
        member.extra = extra;
        return ReadOne(member).times;
    };
    CHECK(timesOf(before1970).modified == second1970 - 10'000'000);
    CHECK(timesOf(unixTime + ntfs).modified == 111);
    CHECK(timesOf(ntfs + unixTime).modified == 111);
    CHECK(timesOf(ntfs).accessed == 222);
    CHECK_FALSE(timesOf(ntfs).created);
    // 32 bits with a sign end in January 2038; the DOS date says which time is meant.
    struct Row {
        std::uint32_t seconds;
        std::uint16_t date;
        std::int64_t meant;
    };
    constexpr std::uint16_t k1980 = 0x0021;
    constexpr std::uint16_t k2040 = 60 << 9 | 0x21;
    constexpr std::uint16_t k2107 = 127 << 9 | 0x21;
    for (const Row& row :
         {Row{2208988800, k2040, 2208988800}, Row{0x80000000, k1980, -2147483648LL},
          Row{0x7FFFFFFF, k2040, 2147483647}, Row{4323456000 & 0xFFFFFFFF, k2107, 4323456000},
          Row{0xFFFFFFFF, 0, -1}, Row{0x90000000, 0x7800, 0x90000000 - (1LL << 32)}}) {
        CAPTURE(row.meant);
        TestMember member = kOne;
        member.date = row.date;
        member.extra = Extra(0x5455, U8(1) + U32(row.seconds));
        CHECK(ReadOne(member).times.modified ==
              second1970 + static_cast<std::uint64_t>(row.meant * 10'000'000));
    }
    CHECK_FALSE(timesOf(Extra(0x5455, "\1")).modified);           // no room for the time
    CHECK_FALSE(timesOf(Extra(0x5455, U8(2) + U32(5))).modified); // no modification time
}
