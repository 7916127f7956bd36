#include "archive/clsZipMemberReader.h"

#include "archive/ArchiveContents.h"
#include "archive/ArchiveText.h"

using namespace vesk;
using namespace vesk::test;

TEST_CASE("sizes that reach into the next member are not tried: many could share its data") {
    const TestMember more = TestMember::Stored("b", "more");
    const std::string together = "text" + MakeZip({more}).substr(0, 30 + 1 + 4);
    TestMember greedy = TestMember::Stored("a", "text");
    greedy.fields["crc"] = CrcOf(together);
    greedy.fields["local.packed"] = greedy.fields["local.size"] = together.size();
    CHECK(ZipTold(MakeZip({greedy, more})) == "a!wrong CRC|b=more");
    CHECK(ZipTold(MakeZip({more, greedy, more})) == "b=more|a!wrong CRC|b=more");
}

TEST_CASE("a large member comes in pieces of bounded size, the progress with it") {
    std::string text;
    std::string blocks; // the same in deflate's blocks without compression
    for (std::uint32_t i = 0; i < 300'000; ++i)
        text += U32(i * 2654435761);
    for (std::size_t at = 0; at < text.size(); at += 50'000)
        blocks +=
            U8(at + 50'000 == text.size() ? 1 : 0) + Deflated(text.substr(at, 50'000)).substr(1);
    for (const bool packed : {false, true}) {
        TestMember member = TestMember::Stored("a", text);
        member.fields["method"] = packed ? 8 : 0;
        if (packed)
            member.data = blocks;
        MemorySource source(MakeZip({member}));
        clsZipDirectory directory(source);
        clsZipMemberReader reader(source, directory, {});
        std::string content;
        std::uint64_t before = 0;
        int calls = 0;
        reader.Stream(directory.Member(0),
                      [&](std::span<const std::byte> piece, std::uint64_t packedDone) {
                          CHECK(piece.size() <= 256 << 10);
                          CHECK(packedDone >= before);
                          before = packedDone;
                          content += TextOf(piece);
                          ++calls;
                      });
        CHECK((content == text));
        CHECK(before == member.data.size());
        CHECK(calls >= 5);
    }
}

TEST_CASE("passwords: asked until right, once for all members, never after a refusal") {
    CheckLines("zip_passwords", [](const std::string& line) {
        const std::size_t mark = line.find(" ? ");
        return ZipTold(ZipOf(line.substr(0, mark)), Split(line.substr(mark + 3), ','));
    });
}
