#include "archive/clsZipDirectory.h"

#include "archive/ArchiveContents.h"
#include "archive/ZipBuilder.h"

#include <doctest/doctest.h>

using namespace vesk;
using namespace vesk::test;

namespace {

ZipMember FirstOf(const std::string& archive, std::size_t number = 0) {
    MemorySource source(archive);
    return clsZipDirectory(source).Member(number);
}

/// A good member with one thing changed.
template <class Change>
TestMember Changed(Change change) {
    TestMember member = TestMember::Packed("a.txt", "text");
    change(member);
    return member;
}

/// A good member of which values are saturated, and in the extra field of wide ones.
TestMember Wide(const std::string& values, std::optional<std::uint32_t> TestMember::*narrow) {
    return Changed([&](TestMember& m) { m.*narrow = 0xFFFFFFFF, m.extra = Extra(1, values); });
}

/// One that goes on in a descriptor behind its data.
TestMember Streamed(const std::string& name, const std::string& text) {
    TestMember member = TestMember::Stored(name, text);
    member.flags = 8;
    member.behind = U32(0x08074B50) + U32(member.crc) + U32(text.size()) + U32(text.size());
    return member;
}

const TestMember kOne = TestMember::Stored("one", "11");
const TestMember kTwo = TestMember::Packed("folder/two", "2222");
const std::string kBoth = "one=11|folder/two=2222";
const std::string kWithoutEnd = "its end is missing or damaged; only what was found without it, ";

} // namespace

TEST_CASE("the archive is found whatever stands around it") {
    TestEnd wide;
    wide.wide = true;
    TestEnd commented;
    commented.comment = std::string("PK\5\6 is no end record, ") + std::string(30, '!');
    for (const TestEnd& end : {TestEnd(), commented, wide})
        for (const char* before : {"", "MZ junk in front"})
            for (const char* after : {"", "behind"}) {
                const std::string archive = before + MakeZip({kOne, kTwo}, end) + after;
                MemorySource source(archive);
                CHECK(clsZipDirectory(source).Comment() == end.comment);
                CHECK(ZipTold(archive) == kBoth);
            }
    CHECK(ZipTold(MakeZip({})) == "");
}

TEST_CASE("what is no archive, or not all of one, is said to be so") {
    const auto ending = [](auto change) {
        TestEnd end;
        change(end);
        return MakeZip({kOne, kTwo}, end);
    };
    const auto damagedRecord = [](std::size_t at, const std::string& bytes) {
        std::string archive = MakeZip({kOne, kTwo, TestMember::Stored("three", "333")});
        return archive.replace(archive.find("PK\1\2", archive.find("PK\1\2") + 1) + at,
                               bytes.size(), bytes);
    };
    const std::string none = "no central directory: not a ZIP archive, or its end is missing: ";
    const std::string lost =
        "the central directory holds 2 readable members, its end record says 3: ";
    const std::string good = MakeZip({kOne});
    struct Row {
        std::string archive, told;
    };
    for (const Row& row : {
             Row{"", none},
             Row{std::string(100'000, 'P'), none},
             Row{good.substr(good.size() - 22), none},
             Row{"junk" + good.substr(0, good.size() - 22), none},
             Row{ending([](TestEnd& end) { end.disk = 1; }),
                 "one part of an archive that spans several disks: "},
             Row{ending([](TestEnd& end) { end.offset = 5; }), kBoth},
             Row{ending([](TestEnd& end) { end.size = 0; }),
                 kWithoutEnd + "2 members, is extracted: " + kBoth},
             Row{ending([](TestEnd& end) { end.count = 3; }), lost + kBoth},
             // The mark of the second record; the length of its name.
             Row{damagedRecord(0, "XX"), lost + "one=11|three=333"},
             Row{damagedRecord(28, "\xFF\xFF"), lost + "one=11|three=333"},
         })
        CHECK(ZipTold(row.archive) == row.told);
}

TEST_CASE("an archive cut short gives what its members' own headers tell") {
    const TestMember streamed = TestMember::Streamed("s\xC3\xA4", "text");
    TestMember wide = Streamed("wide", "PK\7\x08 is a mark that is none");
    wide.behind = U32(0x08074B50) + U32(wide.crc) + U64(wide.size) + U64(wide.size);
    const std::string archive =
        MakeZip({kOne, streamed, wide, TestMember::Stored("folder/", ""), kTwo});
    const std::size_t central = archive.find("PK\1\2");
    const std::string start = "one=11|s\xC3\xA4=text|wide=PK\7\x08 is a mark that is none|"
                              "folder/!folder|folder/two";
    for (const std::size_t length : {central, central + 100, archive.size() - 23})
        CHECK(ZipTold(archive.substr(0, length)) ==
              kWithoutEnd + "5 members, is extracted: " + start + "=2222");
    CHECK(FirstOf(archive.substr(0, central), 1).encoding == NameEncoding::Utf8);
    CHECK(ZipTold(archive.substr(0, central - 1)) == // in the last member's data
          kWithoutEnd + "5 members, is extracted: " + start +
              "!its data reaches beyond the archive");
    // Where a member ends is not known, so what stands in it is not taken for one.
    const std::string open = archive.substr(0, archive.find("PK\7\x08") + 15);
    const std::string first = archive.substr(0, archive.find("PK\3\4", 4));
    for (const std::string& cut : {open, archive.substr(0, archive.find(streamed.data)) + first})
        CHECK(ZipTold(cut) == kWithoutEnd + "2 members, is extracted: one=11|s\xC3\xA4!its end "
                                            "cannot be found without the central directory");
    // The mark behind the data lies across the border of what is fetched at once.
    for (const std::size_t markAt : {262'141U, 262'142U, 262'143U, 262'144U, 262'145U}) {
        const std::string text(markAt - 31, 'x');
        const std::string cut = MakeZip({Streamed("a", text)});
        CHECK(FirstOf(cut.substr(0, cut.find("PK\1\2"))).packedSize == text.size());
    }
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

TEST_CASE("what is a folder; bits that mean nothing, or something else, make no special file") {
    struct Row {
        const char* name;
        std::uint8_t host; ///< 0 MS-DOS, 3 Unix
        std::uint32_t attributes;
        bool folder;
    };
    for (const Row& row :
         {Row{"a/", 0, 0, true}, Row{"a\\", 0, 0, true}, Row{"a", 0, 0, false},
          Row{"a", 0, 0x10, true}, Row{"a", 11, 0x30, true}, Row{"a", 3, 0x10, false},
          Row{"a", 3, 0x41ED0000, true}, Row{"a", 0, 0x81A40010, false}, Row{"a", 0, 0x620, false},
          Row{"a", 0, 0x20000020, false}, Row{"a", 0, 0x1FFF0020, false},
          Row{"a", 3, 0x81A40400, false}, Row{"a", 1, 0x20000000, false}}) {
        CAPTURE(row.attributes);
        TestMember member = TestMember::Stored(row.name, "");
        member.host = row.host;
        member.attributes = row.attributes;
        CHECK(FirstOf(MakeZip({member})).IsFolder() == row.folder);
        CHECK(FirstOf(MakeZip({member})).refusal == "");
    }
}

TEST_CASE("members that must not be extracted are refused one by one") {
    constexpr const char* kSpecial = "it is a link or a special file";
    constexpr const char* kImpossible = "its declared size is impossible";
    constexpr const char* kBeyond = "its data reaches beyond the archive";
    constexpr const char* kOutside = "its local header lies outside the archive";
    constexpr const char* kDamaged = "its local header is damaged";
    struct Row {
        std::string reason;
        TestMember member;
    };
    const std::vector<Row> rows = {
        // Unix file types in the upper half: symbolic link, device; a folder's name changes nothing
        {kSpecial, Changed([](TestMember& m) { m.attributes = 0xA1FF0000; })},
        {kSpecial, Changed([](TestMember& m) { m.attributes = 0x21B60000, m.host = 3; })},
        {kSpecial, Changed([](TestMember& m) { m.name = "a/", m.attributes = 0xA1FF0000; })},
        {"compression method 12 (bzip2) is not supported",
         Changed([](TestMember& m) { m.method = 12; })},
        {"compression method 1234 (unknown) is not supported",
         Changed([](TestMember& m) { m.method = 1234; })},
        {"its kind of encryption is not supported",
         Changed([](TestMember& m) { m.flags = 1 | 1 << 6; })},
        {"it is a patch, not a file", Changed([](TestMember& m) { m.flags = 1 << 5; })},
        {"lies on another disk of the archive", Changed([](TestMember& m) { m.disk = 2; })},
        // more than deflate can make of nine bytes; stored with another size than the data's
        {kImpossible, Changed([](TestMember& m) { m.size = 9 * 1032 + 1; })},
        {kImpossible, Changed([](TestMember& m) { m.method = 0; })},
        // encrypted, yet no room for the header of twelve bytes
        {"its encryption header is cut short", Changed([](TestMember& m) { m.flags = 1; })},
        {kBeyond, Changed([](TestMember& m) { m.packedSize = 200; })},
        {kBeyond, Changed([](TestMember& m) { m.packedSize = 0xFFFFFFFE; })},
        {kOutside, Changed([](TestMember& m) { m.offset = 0xFFFFFFF0; })},
        {kDamaged, Changed([](TestMember& m) { m.offset = 1; })},
        {kDamaged, Changed([](TestMember& m) { m.localSignature = 0x04034B51; })},
        // wide values: cut short, so the saturated one stays; the largest there is
        {kBeyond, Wide("1234", &TestMember::packedSize)},
        {kBeyond, Wide(U64(~0ULL), &TestMember::packedSize)},
        {kOutside, Wide(U64(~0ULL), &TestMember::offset)},
    };
    for (const Row& row : rows)
        CHECK(ZipTold(MakeZip({row.member, kOne})) ==
              row.member.name + "!" + row.reason + "|one=11");
    TestMember wide = Wide(U64(4) + U64(9) + U64(0), &TestMember::packedSize); // all of them
    wide.size = 0xFFFFFFFF;
    wide.offset = 0xFFFFFFFF;
    wide.extra = Extra(0x9999, "other") + wide.extra;
    CHECK(ZipTold(MakeZip({wide})) == "a.txt=text");
}

TEST_CASE("data that two members share is given to the first only") {
    const std::string inner = MakeZip({TestMember::Packed("inner", "x")});
    // The second record points to the first one's local header.
    TestMember twin = kTwo;
    twin.offset = 0;
    // The third points to a whole local header inside the first one's data.
    TestMember quoted = TestMember::Packed("inner", "x");
    quoted.offset = 30 + 7;
    // The fourth claims a byte too many and so reaches into the fifth.
    TestMember greedy = TestMember::Packed("greedy", "x");
    greedy.packedSize = static_cast<std::uint32_t>(greedy.data.size() + 1);
    const std::string overlaps = "!it overlaps another member";
    CHECK(ZipTold(MakeZip({TestMember::Stored("carrier", inner), twin, quoted, greedy, kOne})) ==
          "carrier=" + inner + "|folder/two" + overlaps + "|inner" + overlaps + "|greedy=x|one" +
              overlaps);
}

TEST_CASE("which code page a name is in") {
    const auto unicode = [](const std::string& crcOf, const std::string& name) {
        return Extra(0x7075, U8(1) + U32(CrcOf(crcOf)) + name);
    };
    struct Row {
        std::uint8_t host; ///< 0 MS-DOS, 3 Unix, 10 Windows
        std::uint16_t flags;
        const char* name;
        NameEncoding encoding;
        std::string extra = {};
        const char* readAs = nullptr; ///< As it stands.
    };
    for (const Row& row :
         {Row{0, 0x800, "plain", NameEncoding::Ascii}, Row{0, 0, "\x84", NameEncoding::Oem},
          Row{10, 0, "\x84", NameEncoding::Oem}, Row{3, 0, "\xE4", NameEncoding::Ansi},
          Row{3, 0, "\xC3\xA4", NameEncoding::Utf8}, Row{3, 0, "\xE2\x82", NameEncoding::Ansi},
          Row{3, 0, "\xC3z", NameEncoding::Ansi}, Row{3, 0x800, "\xC3\xA4", NameEncoding::Utf8},
          Row{0, 0, "\x84", NameEncoding::Utf8, unicode("\x84", "\xC3\xA4"), "\xC3\xA4"},
          Row{0, 0, "\x84", NameEncoding::Oem, unicode("other", "\xC3\xA4")},
          Row{0, 0, "\x84", NameEncoding::Oem, unicode("\x84", "")},
          Row{0, 0, "\x84", NameEncoding::Oem, unicode("\x84", "\xC3")}}) { // no UTF-8
        CAPTURE(row.name);
        CAPTURE(row.extra);
        TestMember member = TestMember::Stored(row.name, "x");
        member.host = row.host;
        member.flags = row.flags;
        member.extra = row.extra;
        CHECK(FirstOf(MakeZip({member})).encoding == row.encoding);
        CHECK(FirstOf(MakeZip({member})).name == (row.readAs ? row.readAs : row.name));
    }
}

TEST_CASE("times come from the finest field there is") {
    const auto timesOf = [](const std::string& extra, std::uint16_t date = 0x5A21) {
        TestMember member = kOne;
        member.extra = extra;
        member.date = date;
        return FirstOf(MakeZip({member})).times;
    };
    const auto unixTime = [](std::uint32_t seconds) { return Extra(0x5455, U8(1) + U32(seconds)); };
    const std::string ntfs = Extra(10, U32(0) + U16(1) + U16(24) + U64(111) + U64(222) + U64(0));
    CHECK(timesOf(unixTime(5) + ntfs).modified == 111);
    CHECK(timesOf(ntfs + unixTime(5)).modified == 111);
    CHECK(timesOf(ntfs).accessed == 222);
    CHECK_FALSE(timesOf(ntfs).created);
    CHECK_FALSE(timesOf(Extra(0x5455, "\1")).modified);           // no room for the time
    CHECK_FALSE(timesOf(Extra(0x5455, U8(2) + U32(5))).modified); // no modification time
    // 32 bits with a sign end in January 2038; the DOS date says which time is meant.
    constexpr std::uint16_t k1980 = 0x0021;
    constexpr std::uint16_t k2040 = 60 << 9 | 0x21;
    constexpr std::uint16_t k2107 = 127 << 9 | 0x21;
    struct Row {
        std::uint32_t seconds;
        std::uint16_t date;
        std::int64_t meant;
    };
    for (const Row& row :
         {Row{2208988800, k2040, 2208988800}, Row{0x80000000, k1980, -2147483648LL},
          Row{0x7FFFFFFF, k2040, 2147483647}, Row{4323456000 & 0xFFFFFFFF, k2107, 4323456000},
          Row{0xFFFFFFFF, 0, -1}, Row{0x90000000, 0x7800, 0x90000000 - (1LL << 32)}})
        CHECK(timesOf(unixTime(row.seconds), row.date).modified ==
              116444736000000000 + static_cast<std::uint64_t>(row.meant * 10'000'000));
}
