#include "archive/modUnzip.h"

#include "archive/TreeOnDisk.h"
#include "archive/ZipBuilder.h"
#include "base/modText.h"

#include <winioctl.h>

#include <algorithm>
#include <array>
#include <map>

using namespace vesk;
using namespace vesk::test;

namespace {

using Replace = UnzipCallbacks::Replace;

/// Writes an archive whose members lie around 2 and 4 GiB. @return their texts by their names
std::map<std::string, std::string> WriteHugeZip(const std::string& path) {
    constexpr std::uint64_t kGiB = 1ULL << 30;
    constexpr std::uint64_t kAcross = 1ULL << 20; // and its data goes on behind the border
    const FileHandle file(
        CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD done = 0;
    DeviceIoControl(file.Get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &done, nullptr);
    const auto write = [&](std::uint64_t at, const std::string& bytes) {
        const LARGE_INTEGER place{.QuadPart = static_cast<LONGLONG>(at)};
        REQUIRE(SetFilePointerEx(file.Get(), place, nullptr, FILE_BEGIN) != 0);
        REQUIRE(WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &done,
                          nullptr) != 0);
    };
    std::map<std::string, std::string> texts;
    std::vector<TestMember> members;
    for (const std::uint64_t at : {0 * kGiB, 2 * kGiB - kAcross, 4 * kGiB - kAcross, 5 * kGiB}) {
        const std::string name = std::to_string(at);
        texts[name] = name + std::string(at % kGiB == 0 ? 0 : 5 * kAcross, 'x');
        TestMember& member = members.emplace_back(TestMember::Stored(name, texts[name]));
        const std::string one = MakeZip({member});
        write(at, one.substr(0, one.rfind("PK\1\2")));
        member.fields["offset"] = 0xFFFFFFFF;
        member.extra = Extra(1, U64(at));
    }
    const std::string all = MakeZip(members, {{"wide", 1}, {"offset", 6 * kGiB}});
    write(6 * kGiB, all.substr(all.find("PK\1\2")));
    return texts;
}

} // namespace

TEST_CASE("what was not extracted is in the messages too, with a summary of the rest") {
    TestMember method = TestMember::Stored("method", "x");
    method.fields["method"] = 14;
    const Extracting unzip("x.zip", MakeZip({method, TestMember::Stored("filled/", "x"),
                                             TestMember::Stored("oem\x84\xC4\xB3", "2")}));
    const ExtractionOutcome outcome = UnzipFile(unzip.path, unzip.target);
    CHECK(Lines(outcome.failures) ==
          "method: not extracted, compression method 14 (LZMA) is not supported\n"
          "filled\\: not extracted, it is a folder but has content\n");
    CHECK(UnzipMessages().starts_with(ReplaceAll(Lines(outcome.failures), "\n", "\r\n") +
                                      "Zip Info: "));
    CHECK(UnzipMessages().ends_with("\r\nNum Of Members  : 3\r\n"));
    CHECK((GetFileAttributesW((Widen(unzip.target) + L"\\oem\x00E4\x2500\x2502").c_str()) !=
               INVALID_FILE_ATTRIBUTES ||
           GetOEMCP() != 437));
}

TEST_CASE("times of files and folders are restored to the last digit") {
    constexpr std::uint64_t kTime = 132539328000000010;
    TestMember file = TestMember::Stored("folder/file", "x");
    constexpr std::uint64_t kRead = kTime + 10;
    file.extra = Extra(10, U32(0) + U16(1) + U16(24) + U64(kTime) + U64(kRead) + U64(kTime));
    TestMember folder = TestMember::Stored("folder/", "");
    folder.extra = file.extra;
    const Extracting unzip("x.zip", MakeZip({folder, file}));
    CHECK(UnzipFile(unzip.path, unzip.target).failures.empty());
    const auto ticks = [](const FILETIME& time) {
        return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
    };
    for (const char* name : {"folder\\file", "folder"}) // after what was written into it
        CHECK(ticks(DataOf(unzip / name).ftLastWriteTime) == kTime);
    CHECK(ticks(DataOf(unzip / "folder\\file").ftLastAccessTime) == kRead);
}

TEST_CASE("the short name of another member's folder or file is no other name of it") {
    const TestFolder before; // the system makes the same names again
    const auto shortName = [&](const std::string& name) {
        const std::string path = before.Write(name, "x");
        std::array<char, MAX_PATH> made{};
        GetShortPathNameA(path.c_str(), made.data(), MAX_PATH);
        return FileNameOf(made.data());
    };
    const std::string folder = shortName("a long folder name");
    const std::string file = shortName("a long file name.txt");
    if (file.find('~') == std::string::npos)
        return; // this volume has none
    const Extracting unzip("x.zip", MakeZip({TestMember::Stored("a long folder name/a", "1"),
                                             TestMember::Stored(folder + "/a", "2"),
                                             TestMember::Stored("a long file name.txt", "1"),
                                             TestMember::Stored(file, "2")}));
    CHECK(Lines(UnzipFile(unzip.path, unzip.target).failures) ==
          folder + "\\a: not extracted, its path leads through the short name of another folder\n" +
              file + ": not extracted, its name is the short name of another file\n");
    for (const char* name : {"a long folder name\\a", "a long file name.txt"})
        CHECK(ReadWholeFile(unzip / name) == "1");
}

TEST_CASE("an archive of more than 4 GiB is extracted") {
    const TestFolder folder;
    const auto texts = WriteHugeZip(folder / "x.zip");
    CHECK(UnzipFile(folder / "x.zip", folder / "out").failures.empty());
    for (const auto& [name, text] : texts)
        CHECK((ReadWholeFile(folder / ("out\\" + name)) == text));
}

TEST_CASE("an empty target folder lists the archive and writes nothing") {
    const Extracting unzip(
        "x.zip", MakeZip({TestMember::Stored("sub/a.txt", "x"), TestMember::Stored("../b/", "")}));
    UnzipFile(unzip.path, "");
    const std::string& messages = UnzipMessages();
    CHECK(messages.starts_with("Filename:"));
    CHECK(messages.find("..\\b\\ ") != std::string::npos);
    CHECK(messages.find("Num Of Members  : 2\r\n") != std::string::npos);
    CHECK_FALSE(FolderExists(unzip.target));
    UnzipFile(unzip / "missing.zip", unzip.target); // into an empty buffer
    CHECK(UnzipMessages().starts_with(unzip / "missing.zip" + ": not extracted, "));
    CHECK(std::ranges::count(UnzipMessages(), '\n') == 11);
}

TEST_CASE("the owner decides about existing files when asked") {
    const Extracting unzip(
        "x.zip", MakeZip({TestMember::Stored("a", "new"), TestMember::Stored("b", "new"),
                          TestMember::Stored("c", "new"), TestMember::Stored("d", "new")}));
    struct Row {
        const char* answers; ///< One letter for each question; none: there is nobody to ask.
        bool prompt, overwrite;
        const char* left; ///< Of a, b and c, which were there, and of d.
        std::size_t asked;
    };
    for (const Row& row : {Row{"nyn", true, true, "a=old|b=new|c=old|d=new", 3},
                           Row{"yc", true, true, "a=new|b=old|c=old", 2},
                           Row{"", true, true, "a=old|b=old|c=old|d=new", 0},
                           Row{"yyy", false, false, "a=old|b=old|c=old|d=new", 0},
                           Row{"nnn", false, true, "a=new|b=new|c=new|d=new", 0}}) {
        CAPTURE(row.answers);
        for (const char* name : {"a", "b", "c"})
            unzip.folder.Write(std::string("out\\") + name, "old");
        DeleteFileA((unzip / "d").c_str());
        std::size_t asked = 0;
        int events = 0;
        UnzipCallbacks callbacks;
        callbacks.progress = [&](double) { ++events; };
        if (*row.answers != '\0')
            callbacks.replace = [&](const std::string& path) {
                CHECK(path == unzip / std::string(1, static_cast<char>('a' + asked)));
                const char answer = row.answers[asked++];
                return answer == 'c' ? Replace::Cancel : answer == 'y' ? Replace::Yes : Replace::No;
            };
        DCL options;
        options.PromptToOverwrite = row.prompt;
        options.noflag = row.overwrite;
        options.Zip = unzip.path;
        options.ExtractDir = unzip.target;
        SingleEntryUnzip(options, callbacks);
        CHECK(ListedIn(unzip.target) == row.left);
        CHECK(asked == row.asked);
        CHECK(events == (row.asked == 2 ? 1 : 4));
    }
}
