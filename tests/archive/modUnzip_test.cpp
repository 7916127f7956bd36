#include "archive/modUnzip.h"

#include "TestFolder.h"
#include "archive/ZipBuilder.h"
#include "base/UniqueHandle.h"

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

    /// @return the messages without the summary
    std::string Extract(const UnzipCallbacks& callbacks = {}) const {
        UnzipFile(zip_, Target(), callbacks);
        return Problems();
    }
    std::string Extract(DCL options, const UnzipCallbacks& callbacks) const {
        options.Zip = zip_;
        options.ExtractDir = Target();
        SingleEntryUnzip(options, callbacks);
        return Problems();
    }
    [[nodiscard]] static std::string Problems() {
        return UnzipMessages().substr(0, UnzipMessages().find("Zip Info: "));
    }
    [[nodiscard]] std::string Target() const { return folder_ / "out"; }
    [[nodiscard]] std::string operator/(const std::string& name) const {
        return Target() + "\\" + name;
    }
    [[nodiscard]] std::string Read(const std::string& name) const {
        return ReadWholeFile(*this / name);
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

TEST_CASE("what is refused is named in one line each, the rest is extracted") {
    TestMember method = TestMember::Stored("method", "x");
    method.method = 14;
    TestMember utf8 = TestMember::Stored("\xE4\xB8\xAD", "x"); // no such character in the code page
    utf8.flags = 0x800;
    TestMember broken = TestMember::Stored("\xC3", "x"); // half a character
    broken.flags = 0x800;
    const Unzipping unzip({TestMember::Stored("..\\up.txt", "x"), TestMember::Stored("C:/abs", "x"),
                           TestMember::Stored("line\nbreak", "x"), Folder("../outside/"), method,
                           utf8, broken, TestMember::Stored("fine", "x")});
    const std::string problems = unzip.Extract();
    CHECK(std::ranges::count(problems, '\n') == 7);
    for (const char* line :
         {"..\\up.txt: refused", "C:/abs: refused", "line?break: refused", "../outside/: refused",
          "method: refused, compression method 14 (LZMA)",
          "\xE4\xB8\xAD: refused, the system's code page", "\xC3: refused"}) {
        CAPTURE(line);
        CHECK(problems.find(line) != std::string::npos);
    }
    CHECK(unzip.Read("fine") == "x");
    CHECK_FALSE(FileExists(unzip.Folder() / "up.txt"));
    CHECK_FALSE(FolderExists(unzip.Folder() / "outside"));
}

TEST_CASE("a member with a wrong CRC leaves the old file alone") {
    TestMember wrong = TestMember::Packed("a", "text");
    wrong.crc ^= 1;
    TestMember fresh = wrong;
    fresh.name = "b";
    const Unzipping unzip({wrong, fresh});
    unzip.Folder().Write("out\\a", "old");
    CHECK(unzip.Extract() == "a: wrong CRC, not written\r\nb: wrong CRC, not written\r\n");
    CHECK(unzip.Read("a") == "old");
    CHECK_FALSE(FileExists(unzip / "b"));
}

TEST_CASE("what stands in the way is named") {
    const Unzipping unzip({TestMember::Stored("folder", "x"), TestMember::Stored("file/sub", "x"),
                           TestMember::Stored("locked", "x"), TestMember::Stored("fine", "x")});
    CreateFolderPath(unzip / "folder");
    unzip.Folder().Write("out\\file", "old");
    const std::string locked = unzip.Folder().Write("out\\locked", "old");
    const FileHandle lock(
        CreateFileA(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    const std::string problems = unzip.Extract();
    CHECK(std::ranges::count(problems, '\n') == 3);
    CHECK(problems.find("folder: a folder stands in its place") != std::string::npos);
    CHECK(problems.find("file/sub: a file stands on the way") != std::string::npos);
    CHECK(problems.find("locked: cannot replace") != std::string::npos);
    CHECK(unzip.Read("fine") == "x");
}

TEST_CASE("names are brought into the ANSI code page") {
    TestMember oem = TestMember::Stored("oem\x84", "x"); // code page 437
    TestMember utf8 = TestMember::Stored("utf\xC3\xA4", "x");
    utf8.flags = 0x800;
    const Unzipping unzip({oem, utf8});
    CHECK(unzip.Extract() == "");
    CHECK((FileExists(unzip / "oem\xE4") || GetOEMCP() != 437));
    CHECK((FileExists(unzip / "utf\xE4") || GetACP() != 1252));
}

TEST_CASE("an empty target folder lists the archive and writes nothing") {
    const Unzipping unzip({TestMember::Stored("sub/a.txt", "x"), Folder("../b/")});
    UnzipFile(unzip.Zip(), "");
    const std::string& messages = UnzipMessages();
    CHECK(messages.starts_with("Filename:"));
    CHECK(messages.find("../b/ ") != std::string::npos);
    CHECK(messages.find("Num Of Members  : 2\r\n") != std::string::npos);
    CHECK_FALSE(FolderExists(unzip.Target()));
}

TEST_CASE("no archive: a line and the summary, from an empty buffer each time") {
    const TestFolder folder;
    const std::string noZip = folder.Write("no.zip", "this is no archive");
    for (const std::string& path :
         {folder / "missing.zip", noZip, folder.Write("empty.zip", ""), folder.Path()}) {
        UnzipFile(path, folder / "out");
        CHECK(UnzipMessages().starts_with(path + ": "));
        CHECK(std::ranges::count(UnzipMessages(), '\n') == 11);
    }
    UnzipFile(folder.Write("good.zip", MakeZip({TestMember::Stored("a", "x")})), noZip);
    CHECK(UnzipMessages().find("cannot create " + noZip) != std::string::npos);
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
        callbacks.letEventsRun = [&] { ++events; };
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
