#include "archive/modUnzip.h"

#include "TestFolder.h"
#include "archive/ZipBuilder.h"
#include "archive/modArchive.h"
#include "base/Problem.h"
#include "base/UniqueHandle.h"
#include "base/modSystemError.h"
#include "base/modText.h"

#include <winioctl.h>

#include <algorithm>

using namespace vesk;
using namespace vesk::test;

namespace {

using Replace = UnzipCallbacks::Replace;

/// An archive and the folder it is extracted into.
class Unzipping {
public:
    explicit Unzipping(const std::vector<TestMember>& members)
        : zip_(folder_.Write("x.zip", MakeZip(members))) {}

    /// @return a line for each failure, as the messages have them too
    std::string Extract(const UnzipCallbacks& callbacks = {}) const {
        return Told(UnzipFile(zip_, Target(), callbacks));
    }
    std::string Extract(DCL options, const UnzipCallbacks& callbacks) const {
        options.Zip = zip_;
        options.ExtractDir = Target();
        return Told(SingleEntryUnzip(options, callbacks));
    }
    [[nodiscard]] std::string Told(const ExtractionOutcome& outcome) const {
        const std::string lines = Lines(outcome.failures);
        CHECK(UnzipMessages().substr(0, UnzipMessages().find("Zip Info: ")) ==
              ReplaceAll(lines, "\n", "\r\n"));
        return lines;
    }
    [[nodiscard]] static std::string Lines(const std::vector<MemberFailure>& failures) {
        std::string lines;
        for (const MemberFailure& failure : failures)
            lines += failure.member + ": " + failure.what + ", " + failure.reason + "\n";
        return lines;
    }
    [[nodiscard]] std::string Target() const { return folder_ / "out"; }
    [[nodiscard]] std::string operator/(const std::string& name) const {
        return Target() + "\\" + name;
    }
    [[nodiscard]] std::string Read(const std::string& name) const {
        return ReadWholeFile(*this / name);
    }
    [[nodiscard]] std::string Read(const std::wstring& name) const {
        const FileHandle file(CreateFileW(LongPath(Widen(Target()) + L"\\" + name).c_str(),
                                          GENERIC_READ, 7, nullptr, OPEN_EXISTING, 0, nullptr));
        std::string text(1000, '\0');
        DWORD size = 0;
        if (!file || ReadFile(file.Get(), text.data(), 1000, &size, nullptr) == 0)
            return "cannot be read";
        return text.substr(0, size);
    }
    /// Every name below the target folder, folders before what is in them.
    [[nodiscard]] std::vector<std::wstring> Names() const {
        std::vector<std::wstring> names{L""};
        for (std::size_t i = 0; i < names.size(); ++i)
            ForEachEntry(Widen(Target()) + names[i],
                         [&, below = names[i]](const FolderEntry& entry) {
                             names.push_back(below + L"\\" + entry.name);
                         });
        names.erase(names.begin());
        return names;
    }
    [[nodiscard]] const TestFolder& Folder() const { return folder_; }
    [[nodiscard]] const std::string& Zip() const { return zip_; }

private:
    TestFolder folder_;
    std::string zip_;
};

std::uint64_t ModifiedOf(const std::string& path) {
    const FileHandle file(CreateFileA(path.c_str(), FILE_READ_ATTRIBUTES, 7, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    FILETIME modified{};
    REQUIRE(GetFileTime(file.Get(), nullptr, nullptr, &modified) != 0);
    return std::uint64_t{modified.dwHighDateTime} << 32 | modified.dwLowDateTime;
}

TestMember Utf8(const std::string& name, const std::string& text) {
    TestMember member = TestMember::Stored(name, text);
    member.flags = 0x800;
    return member;
}

TestMember Folder(const std::string& name) {
    return TestMember::Stored(name, "");
}

} // namespace

TEST_CASE("members arrive with their folders, over whatever files were there") {
    const Unzipping unzip({Folder("empty/"), TestMember::Stored("a.txt", "new"),
                           TestMember::Packed("deep/er\\b.txt", "two"),
                           TestMember::Packed("zero", "")});
    unzip.Folder().Write("out\\a.txt", "much longer old text");
    SetFileAttributesA((unzip / "a.txt").c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    for (int again = 0; again < 2; ++again) {
        CHECK(unzip.Extract() == "");
        CHECK(FolderExists(unzip / "empty"));
        CHECK(unzip.Read("a.txt") == "new");
        CHECK(unzip.Read("deep\\er\\b.txt") == "two");
        CHECK(FileExists(unzip / "zero"));
    }
    CHECK(UnzipMessages().find("Num Of Members  : 4\r\n") != std::string::npos);
}

TEST_CASE("times and attributes are restored") {
    constexpr std::uint64_t kTime = 132539328000000010;
    TestMember file = TestMember::Stored("folder/file", "x");
    file.attributes = FILE_ATTRIBUTE_READONLY;
    file.extra = Extra(10, U32(0) + U16(1) + U16(24) + U64(kTime) + U64(kTime) + U64(kTime));
    TestMember folder = Folder("folder/");
    folder.extra = file.extra;
    TestMember nonsense = TestMember::Stored("nonsense", "x");
    nonsense.date = 0; // month 0, day 0
    const Unzipping unzip({folder, file, nonsense});
    CHECK(unzip.Extract() == "");
    CHECK((GetFileAttributesA((unzip / "folder\\file").c_str()) & FILE_ATTRIBUTE_READONLY) != 0);
    CHECK(ModifiedOf(unzip / "folder\\file") == kTime);
    CHECK(ModifiedOf(unzip / "folder") == kTime); // after what was written into it
    CHECK(FileExists(unzip / "nonsense"));
}

TEST_CASE("what is refused is told once, the rest is extracted") {
    TestMember method = TestMember::Stored("method", "x");
    method.method = 14;
    TestMember filled = TestMember::Stored("filled/", "x");
    std::string deep; // as 12,000 folders
    for (int i = 0; i < 12'000; ++i)
        deep += "a/";
    const Unzipping unzip({TestMember::Stored("..\\up.txt", "x"), TestMember::Stored("C:/abs", "x"),
                           TestMember::Stored("line\nbreak", "x"), Folder("../outside/"), method,
                           filled, TestMember::Stored("", "x"), TestMember::Stored(deep + "b", "x"),
                           TestMember::Stored("fine", "x")});
    const std::string told = unzip.Extract();
    CHECK(told == "..\\up.txt: not extracted, its name leads out of the folder\n"
                  "C:\\abs: not extracted, its name holds a character that no file name can\n"
                  "line?break: not extracted, its name holds a character that no file name can\n"
                  "..\\outside\\: not extracted, its name leads out of the folder\n"
                  "method: not extracted, compression method 14 (LZMA) is not supported\n"
                  "filled\\: not extracted, it is a folder but has content\n"
                  "(no name): not extracted, it has no name\n" +
                      ReplaceAll(deep.substr(0, 300), "/", "\\") +
                      "...: not extracted, its name is too long\n");
    CHECK(Unzipping::Lines(InspectArchive(unzip.Zip())) == told);
    CHECK(unzip.Names() == std::vector<std::wstring>{L"\\filled", L"\\fine"});
    CHECK_FALSE(FileExists(unzip.Folder() / "up.txt"));
    CHECK_FALSE(FolderExists(unzip.Folder() / "outside"));
}

TEST_CASE("what archivers write for the folder itself, and for folders in DOS") {
    TestMember dosFolder = TestMember::Stored("dos", "");
    dosFolder.attributes = FILE_ATTRIBUTE_DIRECTORY;
    const Unzipping unzip(
        {Folder("./"), Folder("./sub/"), dosFolder, TestMember::Stored("dos/d", "4")});
    CHECK(unzip.Extract() == "");
    CHECK(unzip.Names() == std::vector<std::wstring>{L"\\dos", L"\\sub", L"\\dos\\d"});
}

TEST_CASE("names that are not the UTF-8 they are said to be, or of DOS, come out as well") {
    const Unzipping unzip({Utf8("\xC3", "1"), TestMember::Stored("oem\x84\xC4\xB3", "2")});
    CHECK(unzip.Extract() == "");
    CHECK(unzip.Read("\xC3") == "1");
    CHECK((unzip.Read(L"oem\x00E4\x2500\x2502") == "2" || GetOEMCP() != 437));
}

TEST_CASE("paths longer than MAX_PATH are written and stamped") {
    const std::string level(200, 'x');
    TestMember folder = Folder(level + "/" + level + "/");
    const Unzipping unzip({folder, TestMember::Stored(level + "/" + level + "/" + level, "deep")});
    for (int again = 0; again < 2; ++again) {
        CHECK(unzip.Extract() == "");
        CHECK(unzip.Read(Widen(level + "\\" + level + "\\" + level)) == "deep");
    }
    CHECK(UnzipFile(unzip.Zip(), unzip / (level + "\\" + level + "\\new")).extracted == 2);
}

TEST_CASE("two members of one name: the last one stays, and what is lost is told") {
    const Unzipping unzip({TestMember::Stored("sub/a", "1"), TestMember::Packed("SUB/./A", "2"),
                           Utf8("\xC3\xA4", "3"), Utf8("\xC3\x84", "4"), Folder("sub/"),
                           TestMember::Stored("sub", "5"), TestMember::Stored("sub/a/b", "6"),
                           TestMember::Stored("twice", "7"), TestMember::Packed("TWICE", "7"),
                           TestMember::Stored("sub//a", "8")});
    const std::string told =
        "SUB\\.\\A: written over another member, has the same name as sub\\a\n"
        "\xC4: written over another member, has the same name as \xE4\n"
        "sub: not extracted, there is a folder in its place\n"
        "sub\\a\\b: not extracted, its path leads through a file\n"
        "sub\\\\a: written over another member, has the same name as SUB\\.\\A\n";
    CHECK(unzip.Extract() == told);
    CHECK(Unzipping::Lines(InspectArchive(unzip.Zip())) == told);
    CHECK(unzip.Read("sub\\a") == "8");
    CHECK(unzip.Read(L"\x00E4") == "4");
    CHECK(UnzipFile(unzip.Zip(), unzip / "again").extracted == 8);
}

TEST_CASE("a member with wrong content leaves the old file alone") {
    TestMember wrong = TestMember::Packed("a", "text");
    wrong.crc ^= 1;
    TestMember fresh = wrong;
    fresh.name = "b";
    TestMember stored = TestMember::Stored("c", "text");
    stored.crc ^= 1;
    TestMember large = TestMember::Stored("large", std::string(5 << 20, 'x'));
    large.crc ^= 1;
    TestMember largeOld = large;
    largeOld.name = "d";
    const Unzipping unzip({wrong, fresh, stored, large, largeOld});
    unzip.Folder().Write("out\\a", "old");
    unzip.Folder().Write("out\\d", "old");
    std::string told;
    for (const char* name : {"a", "b", "c", "large", "d"})
        told += std::string(name) + ": not extracted, wrong CRC\n";
    CHECK(unzip.Extract() == told);
    CHECK(Unzipping::Lines(InspectArchive(unzip.Zip())) == told);
    CHECK(unzip.Read("a") == "old");
    CHECK(unzip.Read("d") == "old");
    CHECK(unzip.Names() == std::vector<std::wstring>{L"\\a", L"\\d"});
}

TEST_CASE("a large member is told of while it comes, and stands under its name when complete") {
    const std::string text(20 << 20, 'x');
    const Unzipping unzip({TestMember::Stored("large", text), TestMember::Stored("small", "x")});
    unzip.Folder().Write("out\\large", "old");
    SetFileAttributesA((unzip / "large").c_str(), FILE_ATTRIBUTE_READONLY);
    double before = 0;
    int calls = 0;
    UnzipCallbacks callbacks;
    callbacks.progress = [&](double fraction) {
        CHECK(fraction >= before);
        CHECK(fraction - before < 0.05);
        if (fraction < 0.99)
            CHECK(unzip.Read("large") == "old");
        before = fraction;
        ++calls;
    };
    CHECK(unzip.Extract(callbacks) == "");
    CHECK(before == 1);
    CHECK(calls > 20);
    CHECK(unzip.Read("large") == text);
    CHECK(unzip.Names().size() == 2);
}

TEST_CASE("an archive of more than 4 GiB is extracted") {
    const TestFolder folder;
    const std::string path = folder.Write("x.zip", "");
    const auto [parts, texts] = HugeZip();
    {
        const FileHandle file(
            CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        DWORD done = 0;
        DeviceIoControl(file.Get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &done, nullptr);
        for (const auto& [at, bytes] : parts) {
            const LARGE_INTEGER place{.QuadPart = static_cast<LONGLONG>(at)};
            REQUIRE(SetFilePointerEx(file.Get(), place, nullptr, FILE_BEGIN) != 0);
            REQUIRE(WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &done,
                              nullptr) != 0);
        }
    }
    CHECK(UnzipFile(path, folder / "out").failures.empty());
    for (const auto& [name, text] : texts)
        CHECK((ReadWholeFile(folder / ("out\\" + name)) == text));
}

TEST_CASE("no part of a large member is ever seen under its name") {
    const Unzipping unzip({TestMember::Stored("large", std::string(8 << 20, 'x'))});
    UnzipCallbacks callbacks;
    callbacks.progress = [&](double fraction) {
        CHECK(FileExists(unzip / "large") == (fraction == 1));
    };
    CHECK(unzip.Extract(callbacks) == "");
}

TEST_CASE("what an owner throws ends the extraction and is not taken for a member's failure") {
    const Unzipping unzip({TestMember::Stored("large", std::string(5 << 20, 'x'))});
    UnzipCallbacks callbacks;
    callbacks.progress = [](double) { throw std::runtime_error("enough"); };
    CHECK_THROWS_WITH(UnzipFile(unzip.Zip(), unzip.Target(), callbacks), "enough");
    CHECK(unzip.Names().empty());
}

TEST_CASE("what stands in the way is told") {
    const Unzipping unzip({TestMember::Stored("folder", "x"), TestMember::Stored("file/sub", "x"),
                           TestMember::Stored("locked", "x"), TestMember::Stored("fine", "x"),
                           Folder("file/")});
    CreateFolderPath(unzip / "folder");
    unzip.Folder().Write("out\\file", "old");
    const std::string locked = unzip.Folder().Write("out\\locked", "old");
    SetFileAttributesA(locked.c_str(), FILE_ATTRIBUTE_READONLY);
    const FileHandle lock(
        CreateFileA(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    CHECK(unzip.Extract() == "folder: not extracted, there is a folder in its place\n"
                             "file\\sub: not extracted, its path leads through a file\n"
                             "locked: not written, " +
                                 AsReason(SystemErrorText(ERROR_SHARING_VIOLATION)) +
                                 "\nfile\\: not extracted, its path leads through a file\n");
    CHECK(unzip.Read("fine") == "x");
    CHECK(unzip.Names().size() == 4);
    CHECK((GetFileAttributesA(locked.c_str()) & FILE_ATTRIBUTE_READONLY) != 0);
}

TEST_CASE("a damaged archive gives what it holds, and the rest is told") {
    const TestFolder folder;
    const std::string good =
        MakeZip({TestMember::Stored("a", "11"), TestMember::Stored("b", "22")});
    const std::string cut = folder.Write("cut.zip", good.substr(0, good.size() - 30));
    const ExtractionOutcome outcome = UnzipFile(cut, folder / "out");
    CHECK(outcome.extracted == 2);
    REQUIRE(outcome.failures.size() == 1);
    CHECK(outcome.failures[0].member == "");
    CHECK(outcome.failures[0].what == "not read whole");
    CHECK(InspectArchive(cut) == outcome.failures);
    CHECK(ReadWholeFile(folder / "out\\b") == "22");
}

TEST_CASE("the password of an archive is asked of its owner") {
    const Unzipping unzip({TestMember::Encrypted("secret"), TestMember::Stored("open", "x")});
    std::vector<bool> asked;
    ExtractionOwner owner;
    owner.password = [&](bool wrongBefore) {
        asked.push_back(wrongBefore);
        return std::optional<std::string>(wrongBefore ? "pass" : "wrong");
    };
    CHECK(ExtractArchive(unzip.Zip(), unzip.Target(), owner).failures.empty());
    CHECK(asked == std::vector<bool>{false, true});
    CHECK(unzip.Read("secret") == "secret text");
    CHECK(InspectArchive(unzip.Zip(), owner).empty());
    CHECK(asked.size() == 4);
    const ExtractionOutcome locked = ExtractArchive(unzip.Zip(), unzip / "locked", {});
    CHECK(Unzipping::Lines(locked.failures) ==
          "secret: not extracted, it is encrypted, and no correct password was given\n");
    CHECK(InspectArchive(unzip.Zip()) == locked.failures);
    CHECK(locked.extracted == 1);
}

TEST_CASE("an empty target folder lists the archive and writes nothing") {
    const Unzipping unzip({TestMember::Stored("sub/a.txt", "x"), Folder("../b/")});
    UnzipFile(unzip.Zip(), "");
    const std::string& messages = UnzipMessages();
    CHECK(messages.starts_with("Filename:"));
    CHECK(messages.find("..\\b\\ ") != std::string::npos);
    CHECK(messages.find("Num Of Members  : 2\r\n") != std::string::npos);
    CHECK_FALSE(FolderExists(unzip.Target()));
}

TEST_CASE("no archive: a line and the summary, from an empty buffer each time") {
    const TestFolder folder;
    const std::string noZip = folder.Write("no.zip", "this is no archive");
    for (const std::string& path :
         {folder / "missing.zip", noZip, folder.Write("empty.zip", ""), folder.Path()}) {
        const ExtractionOutcome outcome = UnzipFile(path, folder / "out");
        REQUIRE(outcome.failures.size() == 1);
        CHECK(outcome.failures[0].member == "");
        CHECK(outcome.failures[0].what == "not extracted");
        CHECK(outcome.failures[0].reason.find('\\') == std::string::npos);
        CHECK(TestZip(path).failures == outcome.failures);
        CHECK(UnzipMessages().starts_with(path + ": "));
        CHECK(std::ranges::count(UnzipMessages(), '\n') == 11);
    }
    const std::string good = folder.Write("good.zip", MakeZip({TestMember::Stored("a", "x")}));
    CHECK(UnzipFile(good, noZip).failures ==
          std::vector<MemberFailure>{
              {"", "not extracted", AsReason(SystemErrorText(ERROR_ALREADY_EXISTS))}});
}

TEST_CASE("the owner decides about existing files when asked") {
    const Unzipping unzip({TestMember::Stored("a", "new"), TestMember::Stored("b", "new"),
                           TestMember::Stored("c", "new"), TestMember::Stored("d", "new")});
    struct Row {
        const char* answers; ///< One letter for each question; none: there is nobody to ask.
        bool prompt, overwrite;
        const char* content; ///< Of a, b, c and d, which was not there.
        std::size_t asked;
    };
    for (const Row& row :
         {Row{"nyn", true, true, "old new old new", 3}, Row{"yc", true, true, "new old old ", 2},
          Row{"", true, true, "old old old new", 0}, Row{"yyy", false, false, "old old old new", 0},
          Row{"nnn", false, true, "new new new new", 0}}) {
        CAPTURE(row.content);
        for (const char* name : {"a", "b", "c"})
            unzip.Folder().Write(std::string("out\\") + name, "old");
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
        unzip.Extract(options, callbacks);
        CHECK(unzip.Read("a") + " " + unzip.Read("b") + " " + unzip.Read("c") + " " +
                  unzip.Read("d") ==
              row.content);
        CHECK(asked == row.asked);
        CHECK(events == (row.asked == 2 ? 1 : 4));
    }
}
