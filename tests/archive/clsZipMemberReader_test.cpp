#include "archive/clsZipMemberReader.h"

#include "archive/ArchiveContents.h"
#include "archive/ZipBuilder.h"

#include <doctest/doctest.h>

using namespace vesk;
using namespace vesk::test;

namespace {

TestMember WithWrongCrc(TestMember member) {
    member.fields["crc"] ^= 1;
    return member;
}

/// A wrong password whose check byte is that of the right one.
std::string LuckyPassword() {
    const TestMember member = TestMember::Encrypted("a");
    for (int number = 0;; ++number) {
        clsZipCipher cipher(std::to_string(number));
        std::byte last{};
        for (const char c : member.data.substr(0, ZipMember::kCipherHeaderSize))
            last = cipher.Decrypt(static_cast<std::byte>(c));
        if (std::to_integer<int>(last) == static_cast<int>(member.fields.at("time") >> 8))
            return std::to_string(number);
    }
}

} // namespace

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
