#include "archive/modZipMember.h"

#include "archive/ZipBuilder.h"

#include <doctest/doctest.h>

using namespace vesk;
using namespace vesk::test;

namespace {

std::string TextOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Everything that can be read, one "name=content" or "name!reason" after the other.
std::string ReadAll(const std::string& archive, ZipMemberReader::PasswordSource password = {}) {
    std::string all;
    ZipMemberReader reader(BytesOf(archive), std::move(password));
    for (const ZipMember& member : ReadZipDirectory(BytesOf(archive)).members) {
        try {
            if (!member.refusal.empty())
                throw ZipProblem(member.refusal);
            all += member.name + "=" + TextOf(reader.Read(member)) + ";";
        } catch (const ZipProblem& problem) {
            all += member.name + "!" + problem.what() + ";";
        }
    }
    return all;
}

/// "secret text" under the password "pass", as an archiver wrote it.
TestMember Encrypted(const std::string& name) {
    TestMember member = TestMember::Stored(name, "secret text");
    member.data = std::string("\x40\x9D\x13\x30\x49\x22\x68\x1C\x7B\x0D\x3E\xA7\x2A\xF1\xFA"
                              "\x58\x2C\x95\xD5\x3F\x6E\xC7\xAE",
                              23);
    member.flags = 9; // encrypted, streamed: the time checks the password
    member.time = 0x4379;
    return member;
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
          "crc!wrong CRC, not written;"
          "short!its data does not have the declared size, not written;"
          "long!its data does not have the declared size, not written;"
          "damaged!its data is damaged, not written;empty=;");
}

TEST_CASE("encrypted members: asked until right, once for all members, never after a refusal") {
    const std::string archive =
        MakeZip({Encrypted("a"), Encrypted("b"), TestMember::Stored("c", "open")});
    int asked = 0;
    CHECK(ReadAll(archive, [&](const ZipMember&) {
              return std::string(++asked < 3 ? "wrong" : "pass");
          }) == "a=secret text;b=secret text;c=open;");
    CHECK(asked == 3);
    asked = 0;
    CHECK(ReadAll(archive, [&](const ZipMember&) {
              ++asked;
              return std::nullopt;
          }) == "a!is encrypted, no password given;b!is encrypted, no password given;c=open;");
    CHECK(asked == 1);
    asked = 0;
    CHECK(ReadAll(archive, [&](const ZipMember&) {
              ++asked;
              return std::string("wrong");
          }) == "a!wrong password;b!wrong password;c=open;");
    CHECK(asked == 6);
    CHECK(ReadAll(archive) ==
          "a!is encrypted, no password given;b!is encrypted, no password given;c=open;");
}

TEST_CASE("no damage to an archive leads astray") {
    TestEnd end;
    end.comment = "note";
    TestMember timed = TestMember::Packed("t", "times");
    timed.extra = Extra(10, U32(0) + U16(1) + U16(24) + U64(1) + U64(2) + U64(3)) +
                  Extra(0x7075, U8(1) + U32(CrcOf("t")) + "u");
    for (const bool wide : {false, true}) {
        end.wide = wide;
        const std::string good =
            MakeZip({TestMember::Stored("a", "stored"), timed, Encrypted("c")}, end);
        CHECK(ReadAll(good, [](const ZipMember&) { return std::string("pass"); }) ==
              "a=stored;u=times;c=secret text;");
        const auto tryAll = [](const std::string& archive) {
            try {
                ReadAll(archive, [](const ZipMember&) { return std::string("pass"); });
            } catch (const ZipProblem&) {
                return; // an ordinary answer; anything else is caught by the sanitizers
            }
        };
        for (std::size_t length = 0; length < good.size(); ++length) {
            tryAll(good.substr(0, length));
            tryAll(good.substr(length));
            for (const char value : {'\0', '\1', '\x7F', '\xFF'}) {
                std::string changed = good;
                changed[length] = value;
                tryAll(changed);
            }
        }
    }
}
