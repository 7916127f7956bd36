#include "archive/clsZipMemberReader.h"

#include "archive/ArchiveContents.h"
#include "archive/ZipBuilder.h"

#include <doctest/doctest.h>

using namespace vesk;
using namespace vesk::test;

namespace {

TestMember WithWrongCrc(TestMember member) {
    member.crc ^= 1;
    return member;
}

/// A wrong password whose check byte is that of the right one.
std::string LuckyPassword() {
    const TestMember member = TestMember::Encrypted("a");
    for (int number = 0;; ++number) {
        ZipCipher cipher(std::to_string(number));
        std::byte last{};
        for (const char c : member.data.substr(0, ZipMember::kCipherHeaderSize))
            last = cipher.Decrypt(static_cast<std::byte>(c));
        if (std::to_integer<int>(last) == member.time >> 8)
            return std::to_string(number);
    }
}

} // namespace

TEST_CASE("what does not hold what it declares is not handed out") {
    const auto packed = [](const char* name, auto change) {
        TestMember member = TestMember::Packed(name, "text");
        change(member);
        return member;
    };
    CHECK(ZipTold(MakeZip({
              WithWrongCrc(TestMember::Packed("crc", "text")),
              WithWrongCrc(TestMember::Stored("stored", "text")),
              packed("short", [](TestMember& m) { m.size = 5; }), // one more than the data gives
              packed("long", [](TestMember& m) { m.size = 3; }),
              packed("damaged", [](TestMember& m) { m.data[0] = 7; }), // no such type of block
              packed("endless", [](TestMember& m) { m.data[0] = 0; }), // no further block follows
              TestMember::Packed("empty", ""),
          })) == "crc!wrong CRC|stored!wrong CRC|short!its data does not have the declared size|"
                 "long!its data does not have the declared size|damaged!its data is damaged|"
                 "endless!its data is damaged|empty=");
}

TEST_CASE("of contradicting sizes those count that the data proves, of checksums the directory's") {
    struct Row {
        const char* told;
        bool packed;
        std::uint32_t packedSize, size; ///< In the directory; the data is 9 or 4 bytes for 4.
        std::uint32_t localPackedSize, localSize;
    };
    for (const Row& row : {
             Row{"a=text", true, 9, 5, 9, 4},
             Row{"a=text", true, 9, 0, 9, 4},
             Row{"a=text", true, 8, 4, 9, 4},
             Row{"a=text", true, 5000, 4, 9, 4}, // beyond the archive
             Row{"a=text", true, 9, 50'000, 9, 4},
             Row{"a=text", true, 9, 4, 7, 3},
             Row{"a=text", true, 9, 4, 5000, 50'000},
             Row{"a=text", false, 3, 3, 4, 4},
             Row{"a=text", false, 4, 9, 4, 4},
             Row{"a!wrong CRC", false, 3, 3, 2, 2},
             Row{"a!its data does not have the declared size", true, 9, 5, 9, 3},
             Row{"a!its data does not have the declared size", true, 9, 5, 5000, 4},
             Row{"a!its data reaches beyond the archive", true, 5000, 4, 5000, 5},
         }) {
        TestMember member =
            row.packed ? TestMember::Packed("a", "text") : TestMember::Stored("a", "text");
        member.packedSize = row.packedSize;
        member.size = row.size;
        member.localSizes = U32(0) + U32(row.localPackedSize) + U32(row.localSize);
        CHECK(ZipTold(MakeZip({member})) == row.told);
    }
    TestMember local = TestMember::Packed("a", "text"); // only its header has the right checksum
    local.localSizes = U32(local.crc) + U32(9) + U32(4);
    CHECK(ZipTold(MakeZip({WithWrongCrc(local)})) == "a!wrong CRC");

    // Other sizes that reach into the next member are not tried: many members could share its data.
    const TestMember more = TestMember::Stored("b", "more");
    const std::string together = "text" + MakeZip({more}).substr(0, 30 + 1 + 4);
    TestMember greedy = TestMember::Stored("a", "text");
    greedy.crc = CrcOf(together);
    greedy.localSizes = U32(0) + U32(together.size()) + U32(together.size());
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
        member.method = packed ? 8 : 0;
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
    const auto locked = [](const char* name) { return TestMember::Encrypted(name); };
    const TestMember damaged = WithWrongCrc(locked("damaged"));
    const std::string one = MakeZip({locked("a")});
    const std::string two = MakeZip({locked("a"), locked("b"), TestMember::Stored("c", "open")});
    const std::string lucky = LuckyPassword();
    const std::string none = "!it is encrypted, and no correct password was given|";
    struct Row {
        std::string archive;
        std::vector<std::string> answers;
        std::string told;
    };
    for (const Row& row : {
             Row{two, {"wrong", "bad", "pass"}, "a=secret text|b=secret text|c=open|?!!"},
             Row{two, {"pass"}, "a=secret text|b=secret text|c=open|?"},
             Row{two, {}, "a" + none + "b" + none + "c=open|?"},
             Row{two, {"wrong"}, "a" + none + "b" + none + "c=open|?!"},
             Row{two, {"a", "b", "c", "pass"}, "a!wrong password|b!wrong password|c=open|?!!"},
             // One that only seems right; it is not doubted when it is insisted on.
             Row{one, {lucky, "pass"}, "a=secret text|?!"},
             Row{one, {lucky}, "a" + none + "?!"},
             Row{one, {lucky, lucky}, "a!wrong password, or its data is damaged|?!"},
             // Where it opens other members as well it is right, and the data is not.
             Row{MakeZip({damaged, locked("b"), locked("c")}),
                 {"pass"},
                 "damaged!wrong CRC|b=secret text|c=secret text|?"},
             Row{MakeZip({damaged, locked("b")}),
                 {"pass", "pass"},
                 "damaged!wrong password, or its data is damaged|b=secret text|?!"},
         })
        CHECK(ZipTold(row.archive, row.answers) == row.told);
}
