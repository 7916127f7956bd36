#include "archive/clsZipDirectory.h"

#include "ExpectedText.h"
#include "archive/ArchiveContents.h"
#include "archive/ArchiveText.h"

using namespace vesk;
using namespace vesk::test;

namespace {

ZipMember FirstOf(const std::string& archive, std::size_t number = 0) {
    MemorySource source(archive);
    return clsZipDirectory(source).Member(number);
}

/// What a directory says of a member: its name, code page, kind and times.
std::string Described(const ZipMember& member) {
    constexpr const char* kEncodings[] = {"ASCII", "UTF-8", "OEM", "ANSI"};
    std::string text =
        Escaped(member.name) + ", " + kEncodings[static_cast<std::size_t>(member.encoding)];
    text += member.IsFolder() ? ", a folder" : "";
    text += member.refusal.empty() ? "" : ", " + member.refusal;
    for (const auto& [what, time] : {std::pair{", modified ", member.times.modified},
                                     {", accessed ", member.times.accessed},
                                     {", created ", member.times.created}})
        text += time ? what + std::to_string(*time) : "";
    return text;
}

const TestMember kOne = TestMember::Stored("one", "11");
const TestMember kTwo = TestMember::Packed("folder/two", "2222");
const std::string kBoth = "one=11|folder/two=2222";
const std::string kWithoutEnd = "its end is missing or damaged; only what was found without it, ";

} // namespace

TEST_CASE("the archive is found whatever stands around it") {
    const std::string comment = "PK\5\6 is no end record, " + std::string(30, '!');
    for (const std::string& zip : {MakeZip({kOne, kTwo}), MakeZip({kOne, kTwo}, {}, comment),
                                   MakeZip({kOne, kTwo}, {{"wide", 1}})})
        for (const char* before : {"", "MZ junk in front"})
            for (const char* after : {"", "behind"}) {
                const std::string archive = before + zip + after;
                MemorySource source(archive);
                CHECK(clsZipDirectory(source).Comment() == (zip.ends_with(comment) ? comment : ""));
                CHECK(ZipTold(archive) == kBoth);
            }
    CHECK(ZipTold(MakeZip({})) == "");
}

TEST_CASE("what is no archive, or not all of one, is said to be so") {
    const auto damagedRecord = [](std::size_t at, const std::string& bytes) {
        std::string archive = MakeZip({kOne, kTwo, TestMember::Stored("three", "333")});
        return archive.replace(archive.find("PK\1\2", archive.find("PK\1\2") + 1) + at,
                               bytes.size(), bytes);
    };
    const std::string none = "no central directory: not a ZIP archive, or its end is missing: ";
    const std::string lost =
        "the central directory holds 2 readable members, its end record says 3: ";
    const std::string good = MakeZip({kOne});
    for (const std::string& archive :
         {std::string(), std::string(100'000, 'P'), good.substr(good.size() - 22),
          "junk" + good.substr(0, good.size() - 22)})
        CHECK(ZipTold(archive) == none);
    // The mark of the second record; the length of its name.
    for (const std::string& archive : {damagedRecord(0, "XX"), damagedRecord(28, "\xFF\xFF")})
        CHECK(ZipTold(archive) == lost + "one=11|three=333");
}

TEST_CASE("an archive cut short gives what its members' own headers tell") {
    const TestMember streamed = TestMember::Streamed(TestMember::Packed("s\xC3\xA4", "text"));
    TestMember wide = TestMember::Stored("wide", "PK\7\x08 is a mark that is none");
    wide.behind =
        U32(0x08074B50) + U32(wide.fields["crc"]) + U64(wide.data.size()) + U64(wide.data.size());
    wide.fields["flags"] = 8;
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
        const std::string cut = MakeZip({TestMember::Streamed(TestMember::Stored("a", text))});
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
    archive.resize(archive.size() - 22);
    const std::size_t size = archive.size() - archive.find("PK\1\2"); // with the junk
    archive += MakeZip({}, {{"size", size}, {"count", 100}});
    MemorySource source(archive);
    clsZipDirectory directory(source);
    REQUIRE(directory.Count() == 100);
    for (std::size_t i = 0; i < 300; ++i)
        CHECK(directory.Described(i * 37 % 100).name == std::to_string(i * 37 % 100));
}

TEST_CASE("fields that decide what a member is, and whether it is extracted") {
    CheckLines("zip_directories", [](const auto& line) { return Described(FirstOf(ZipOf(line))); });
    CheckLines("zip_contents", [](const auto& line) { return ZipTold(ZipOf(line)); });
}

TEST_CASE("data that two members share is given to the first only") {
    const std::string inner = MakeZip({TestMember::Packed("inner", "x")});
    // The second record points to the first one's local header.
    TestMember twin = kTwo;
    twin.fields["offset"] = 0;
    // The third points to a whole local header inside the first one's data.
    TestMember quoted = TestMember::Packed("inner", "x");
    quoted.fields["offset"] = 30 + 7;
    // The fourth claims a byte too many and so reaches into the fifth.
    TestMember greedy = TestMember::Packed("greedy", "x");
    greedy.fields["packed"] = greedy.data.size() + 1;
    const std::string overlaps = "!it overlaps another member";
    CHECK(ZipTold(MakeZip({TestMember::Stored("carrier", inner), twin, quoted, greedy, kOne})) ==
          "carrier=" + inner + "|folder/two" + overlaps + "|inner" + overlaps + "|greedy=x|one" +
              overlaps);
}
