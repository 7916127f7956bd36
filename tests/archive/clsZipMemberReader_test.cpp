#include "archive/clsZipMemberReader.h"

#include "archive/MemorySource.h"
#include "archive/ZipBuilder.h"

#include <doctest/doctest.h>

using namespace vesk;
using namespace vesk::test;

namespace {

std::string TextOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

using Password = clsZipPasswords::Source;

std::string ContentOf(clsZipMemberReader& reader, const ZipMember& member, bool inPieces) {
    if (!inPieces)
        return TextOf(reader.Read(member));
    std::string content;
    reader.Stream(member, [&](std::span<const std::byte> piece, std::uint64_t packedDone) {
        CHECK(packedDone <=
              std::max(member.packedSize, member.otherSizes.value_or(ZipSizes()).packed));
        content += TextOf(piece);
    });
    return content;
}

/// Everything that can be read, one "name=content" or "name!reason" after the other.
std::string ReadAll(const std::string& archive, const Password& password, bool inPieces) {
    std::string all;
    MemorySource source(archive);
    clsZipDirectory directory(source);
    clsZipMemberReader reader(source, directory, password);
    for (const ZipMember& member : ListingOf(directory).members) {
        try {
            if (!member.refusal.empty())
                throw ArchiveProblem(member.refusal);
            all += member.name + "=" + ContentOf(reader, member, inPieces) + ";";
        } catch (const ArchiveProblem& problem) {
            all += member.name + "!" + problem.what() + ";";
        }
    }
    return all;
}

/// The same whole and in pieces, which must not differ.
std::string ReadAll(const std::string& archive, const Password& password = {}) {
    const std::string whole = ReadAll(archive, password, false);
    CHECK(ReadAll(archive, password, true) == whole);
    return whole;
}

/// A file with holes.
class SparseSource : public ByteSource {
public:
    explicit SparseSource(const SparseBytes& parts) : parts_(parts) {}

    [[nodiscard]] std::uint64_t Size() const override {
        const auto& [at, bytes] = *parts_.rbegin();
        return at + bytes.size();
    }
    std::size_t Read(std::uint64_t at, std::span<std::byte> to) override {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(to.size(), Size() - at));
        std::ranges::fill(to, std::byte{0});
        for (const auto& [start, text] : parts_) {
            const std::uint64_t from = std::max(at, start);
            const std::uint64_t end = std::min(at + count, start + text.size());
            if (from < end)
                text.copy(reinterpret_cast<char*>(to.data()) + (from - at),
                          static_cast<std::size_t>(end - from),
                          static_cast<std::size_t>(from - start));
        }
        return count;
    }

private:
    const SparseBytes& parts_;
};

TestMember Encrypted(const std::string& name) {
    return TestMember::Encrypted(name);
}

} // namespace

TEST_CASE("what does not hold what it declares is not handed out") {
    TestMember wrongCrc = TestMember::Packed("crc", "text");
    wrongCrc.crc ^= 1;
    TestMember shorter = TestMember::Packed("short", "text");
    shorter.size = 5; // one more than the data gives
    TestMember longer = TestMember::Packed("long", "text");
    longer.size = 3; // one less
    TestMember damaged = TestMember::Packed("damaged", "text");
    damaged.data[0] = 7; // a block type that does not exist
    CHECK(ReadAll(MakeZip({wrongCrc, shorter, longer, damaged, TestMember::Packed("empty", "")})) ==
          "crc!wrong CRC;short!its data does not have the declared size;"
          "long!its data does not have the declared size;"
          "damaged!its data is damaged;empty=;");
    TestMember stored = TestMember::Stored("stored", "text");
    stored.crc ^= 1;
    TestMember endless = TestMember::Packed("endless", "text");
    endless.data[0] = 0; // not the last block, and none follows
    CHECK(ReadAll(MakeZip({stored, endless})) == "stored!wrong CRC;endless!its data is damaged;");
}

TEST_CASE("of contradicting sizes those count that the data proves, of checksums the directory's") {
    struct Row {
        const char* result;
        bool packed;
        std::uint32_t packedSize, size; ///< In the directory; the data is 9 or 4 bytes for 4.
        std::uint32_t localPackedSize, localSize;
    };
    for (const Row& row : {
             Row{"a=text;", true, 9, 5, 9, 4},
             Row{"a=text;", true, 9, 0, 9, 4},
             Row{"a=text;", true, 8, 4, 9, 4},
             Row{"a=text;", true, 5000, 4, 9, 4}, // beyond the archive
             Row{"a=text;", true, 9, 50'000, 9, 4},
             Row{"a=text;", true, 9, 4, 7, 3},
             Row{"a=text;", true, 9, 4, 5000, 50'000},
             Row{"a=text;", false, 3, 3, 4, 4},
             Row{"a=text;", false, 4, 9, 4, 4},
             Row{"a!wrong CRC;", false, 3, 3, 2, 2},
             Row{"a!its data does not have the declared size;", true, 9, 5, 9, 3},
             Row{"a!its data does not have the declared size;", true, 9, 5, 5000, 4},
             Row{"a!its data reaches beyond the archive;", true, 5000, 4, 5000, 5},
         }) {
        TestMember member =
            row.packed ? TestMember::Packed("a", "text") : TestMember::Stored("a", "text");
        member.packedSize = row.packedSize;
        member.size = row.size;
        member.localSizes = U32(0) + U32(row.localPackedSize) + U32(row.localSize);
        CHECK(ReadAll(MakeZip({member})) == row.result);
    }
    TestMember local = TestMember::Packed("a", "text"); // only its header has the right checksum
    local.localSizes = U32(local.crc) + U32(9) + U32(4);
    local.crc ^= 1;
    CHECK(ReadAll(MakeZip({local})) == "a!wrong CRC;");

    // Other sizes that reach into the next member are not tried: many members could share its data.
    TestMember greedy = TestMember::Stored("a", "text");
    const std::string next = MakeZip({TestMember::Stored("b", "more")});
    const std::string together = "text" + next.substr(0, 30 + 1 + 4);
    greedy.size = 4;
    greedy.packedSize = 4;
    greedy.crc = TestMember::Stored("a", together).crc;
    const auto count = static_cast<std::uint32_t>(together.size());
    greedy.localSizes = U32(0) + U32(count) + U32(count);
    CHECK(ReadAll(MakeZip({greedy, TestMember::Stored("b", "more")})) == "a!wrong CRC;b=more;");
    CHECK(ReadAll(MakeZip({TestMember::Stored("b", "more"), greedy,
                           TestMember::Stored("b", "more")})) == "b=more;a!wrong CRC;b=more;");
}

TEST_CASE("a large member comes in pieces of bounded size, the progress with it") {
    std::string text;
    for (std::uint32_t i = 0; i < 300'000; ++i)
        text += U32(i * 2654435761);
    for (const bool packed : {false, true}) {
        TestMember member = TestMember::Stored("a", text);
        if (packed) { // blocks without compression
            member.data.clear();
            for (std::size_t at = 0; at < text.size(); at += 50'000) {
                const std::string block = text.substr(at, 50'000);
                member.data += U8(at + 50'000 >= text.size() ? 1 : 0) + Deflated(block).substr(1);
            }
            member.method = 8;
        }
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
        CHECK(content == text);
        CHECK(before == member.data.size());
        CHECK(calls >= 5);
    }
}

TEST_CASE("members are found and read on both sides of 2 and 4 GiB") {
    const auto [parts, texts] = HugeZip();
    SparseSource source(parts);
    clsZipDirectory directory(source);
    CHECK(directory.Problem() == "");
    clsZipMemberReader reader(source, directory, {});
    REQUIRE(directory.Count() == texts.size());
    for (const ZipMember& member : ListingOf(directory).members)
        for (const bool inPieces : {false, true})
            CHECK((ContentOf(reader, member, inPieces) == texts.at(member.name)));
}

TEST_CASE("encrypted members: asked until right, once for all members, never after a refusal") {
    const std::string archive =
        MakeZip({Encrypted("a"), Encrypted("b"), TestMember::Stored("c", "open")});
    struct Row {
        std::vector<const char*> answers; ///< Then nothing.
        const char* result;
        std::size_t asked;
    };
    for (const Row& row : {
             Row{{"wrong", "bad", "pass"}, "a=secret text;b=secret text;c=open;", 3},
             Row{{"pass"}, "a=secret text;b=secret text;c=open;", 1},
             Row{{},
                 "a!it is encrypted, and no correct password was given;b!it is encrypted, and no "
                 "correct password "
                 "was given;c=open;",
                 1},
             Row{{"wrong"},
                 "a!it is encrypted, and no correct password was given;b!it is encrypted, and no "
                 "correct password "
                 "was given;c=open;",
                 2},
             Row{{"wrong", "wrong", "wrong", "pass"},
                 "a!wrong password;b!wrong password;c=open;",
                 3},
         }) {
        for (const bool inPieces : {false, true}) {
            std::size_t asked = 0;
            const auto answer = [&](bool wrongBefore) {
                CHECK(wrongBefore == (asked != 0));
                const std::size_t number = asked++;
                return number < row.answers.size() ? std::optional<std::string>(row.answers[number])
                                                   : std::nullopt;
            };
            CHECK(ReadAll(archive, answer, inPieces) == row.result);
            CHECK(asked == row.asked);
        }
    }
    CHECK(ReadAll(archive) == "a!it is encrypted, and no correct password was given;b!it is "
                              "encrypted, and no correct password was given;c=open;");
}

TEST_CASE("a wrong password that passes the early check is still a wrong one") {
    // Found by trying: its check byte is that of the right one.
    std::string lucky;
    const auto opens = [](const std::string& password, const TestMember& member) {
        ZipCipher cipher(password);
        std::byte last{};
        for (const char c : member.data.substr(0, ZipMember::kCipherHeaderSize))
            last = cipher.Decrypt(static_cast<std::byte>(c));
        return std::to_integer<int>(last) == member.time >> 8;
    };
    for (int number = 0; lucky.empty(); ++number)
        if (opens(std::to_string(number), Encrypted("a")))
            lucky = std::to_string(number);
    TestMember damaged = Encrypted("damaged");
    damaged.crc ^= 1;
    const auto answer = [](std::vector<std::string> answers) {
        return [answers, at = std::size_t{0}](bool) mutable {
            return at < answers.size() ? std::optional(answers[at++]) : std::nullopt;
        };
    };
    const std::string one = MakeZip({Encrypted("a")});
    const std::string three = MakeZip({damaged, Encrypted("b"), Encrypted("c")});
    CHECK(ReadAll(one, answer({lucky, "pass"})) == "a=secret text;");
    CHECK(ReadAll(one, answer({lucky})) == "a!it is encrypted, and no correct password was given;");
    CHECK(ReadAll(one, answer({lucky, lucky})) == "a!wrong password, or its data is damaged;");
    // Where it opens other members as well it is right, and the data is not.
    CHECK(ReadAll(three, answer({"pass"})) == "damaged!wrong CRC;b=secret text;c=secret text;");
    CHECK(ReadAll(MakeZip({damaged, Encrypted("b")}), answer({"pass", "pass"})) ==
          "damaged!wrong password, or its data is damaged;b=secret text;");
}
