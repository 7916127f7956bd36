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

struct Times {
    FILETIME created{}, accessed{}, modified{};
};
Times TimesOf(const std::string& path) {
    const FileHandle file(CreateFileA(path.c_str(), FILE_READ_ATTRIBUTES, 7, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    Times times;
    REQUIRE(GetFileTime(file.Get(), &times.created, &times.accessed, &times.modified) != 0);
    return times;
}
std::uint64_t Ticks(const FILETIME& time) {
    return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

/// Local date and time of a stamp as the archive would store them.
std::pair<WORD, WORD> DosTimeOf(const FILETIME& time) {
    SYSTEMTIME utc{};
    SYSTEMTIME local{};
    FILETIME localTime{};
    std::pair<WORD, WORD> result;
    FileTimeToSystemTime(&time, &utc);
    SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
    SystemTimeToFileTime(&local, &localTime);
    FileTimeToDosDateTime(&localTime, &result.first, &result.second);
    return result;
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
    TestMember dos = TestMember::Stored("dos", "x");
    dos.date = 0x52CF; // 2021-06-15: summer time where there is one
    dos.attributes = FILE_ATTRIBUTE_READONLY;
    TestMember exact = TestMember::Stored("exact", "x");
    exact.extra = Extra(10, U32(0) + U16(1) + U16(24) + U64(132539328000000010) +
                                U64(132539328000000020) + U64(132539328000000030));
    TestMember folder = Folder("folder/");
    TestMember within = TestMember::Stored("folder/within", "x");
    TestMember nonsense = TestMember::Stored("nonsense", "x");
    nonsense.date = 0; // month 0, day 0
    const Unzipping unzip({dos, exact, folder, within, nonsense});
    CHECK(unzip.Extract() == "");
    CHECK(DosTimeOf(TimesOf(unzip / "dos").modified) == std::pair<WORD, WORD>(dos.date, dos.time));
    CHECK((GetFileAttributesA((unzip / "dos").c_str()) & FILE_ATTRIBUTE_READONLY) != 0);
    CHECK(Ticks(TimesOf(unzip / "exact").modified) == 132539328000000010);
    CHECK(DosTimeOf(TimesOf(unzip / "folder").modified) ==
          std::pair<WORD, WORD>(folder.date, folder.time));
    CHECK(FileExists(unzip / "nonsense"));
}

TEST_CASE("what is refused is named in one line each, the rest is extracted") {
    TestMember link = TestMember::Stored("link", "/etc/passwd");
    link.attributes = 0xA1FF0000;
    TestMember method = TestMember::Stored("method", "x");
    method.method = 14;
    TestMember utf8 = TestMember::Stored("\xE4\xB8\xAD", "x"); // no such character in the code page
    utf8.flags = 0x800;
    TestMember broken = TestMember::Stored("\xC3", "x"); // half a character
    broken.flags = 0x800;
    const Unzipping unzip({TestMember::Stored("..\\up.txt", "x"), TestMember::Stored("C:/abs", "x"),
                           TestMember::Stored("line\nbreak", "x"), Folder("../outside/"), link,
                           method, utf8, broken, TestMember::Stored("fine", "x")});
    const std::string problems = unzip.Extract();
    CHECK(std::ranges::count(problems, '\n') == 8);
    for (const char* line :
         {"..\\up.txt: refused", "C:/abs: refused", "line?break: refused", "../outside/: refused",
          "link: refused, is a link", "method: refused, compression method 14 (LZMA)",
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
    TestMember ansi = TestMember::Stored("ansi\xE4", "x");
    ansi.host = 3;
    const Unzipping unzip({oem, utf8, ansi});
    CHECK(unzip.Extract() == "");
    if (GetACP() == 1252 && GetOEMCP() == 437)
        for (const char* name : {"oem\xE4", "utf\xE4", "ansi\xE4"}) {
            CAPTURE(name);
            CHECK(FileExists(unzip / name));
        }
}

TEST_CASE("an empty target folder lists the archive and writes nothing") {
    const Unzipping unzip({TestMember::Stored("sub/a.txt", "x"), Folder("../b/")});
    UnzipFile(unzip.Zip(), "");
    const std::string& messages = UnzipMessages();
    CHECK(messages.starts_with("Filename:"));
    CHECK(messages.find("sub/a.txt ") != std::string::npos);
    CHECK(messages.find("../b/ ") != std::string::npos);
    CHECK(messages.find("Num Of Members  : 2\r\n") != std::string::npos);
    CHECK_FALSE(FolderExists(unzip.Target()));
}

TEST_CASE("no archive: a line and the summary, from an empty buffer each time") {
    const TestFolder folder;
    const std::string noZip = folder.Write("no.zip", "this is no archive");
    const std::string empty = folder.Write("empty.zip", "");
    for (const std::string& path : {folder / "missing.zip", noZip, empty, folder.Path()}) {
        UnzipFile(path, folder / "out");
        CHECK(UnzipMessages().starts_with(path + ": "));
        CHECK(UnzipMessages().find("Num Of Members  : 0\r\n") != std::string::npos);
        CHECK(std::ranges::count(UnzipMessages(), '\n') == 11);
    }
    UnzipFile(folder.Write("good.zip", MakeZip({TestMember::Stored("a", "x")})), noZip);
    CHECK(UnzipMessages().find("cannot create " + noZip) != std::string::npos);
}

TEST_CASE("the owner decides about existing files when asked") {
    const Unzipping unzip({TestMember::Stored("a", "new"), TestMember::Stored("b", "new"),
                           TestMember::Stored("c", "new"), TestMember::Stored("d", "new")});
    const auto reset = [&] {
        for (const char* name : {"a", "b", "c"})
            unzip.Folder().Write(std::string("out\\") + name, "old");
        DeleteFileA((unzip / "d").c_str());
    };
    const auto content = [&] {
        return unzip.Read("a") + " " + unzip.Read("b") + " " + unzip.Read("c") + " " +
               unzip.Read("d");
    };
    std::vector<std::string> asked;
    UnzipCallbacks callbacks;
    DCL options;
    options.PromptToOverwrite = true;

    reset();
    callbacks.replace = [&](const std::string& name) {
        asked.push_back(name);
        return name.ends_with("b") ? Replace::Yes : Replace::No;
    };
    unzip.Extract(options, callbacks);
    CHECK(content() == "old new old new");
    CHECK(asked == std::vector<std::string>{unzip / "a", unzip / "b", unzip / "c"});

    reset();
    callbacks.replace = [](const std::string& name) {
        return name.ends_with("a") ? Replace::Yes : Replace::Cancel;
    };
    unzip.Extract(options, callbacks);
    CHECK(content() == "new old old ");

    reset();
    unzip.Extract(options, {}); // nobody to ask
    CHECK(content() == "old old old new");

    reset();
    options.PromptToOverwrite = false;
    options.noflag = false;
    unzip.Extract(options, callbacks);
    CHECK(content() == "old old old new");

    reset();
    int events = 0;
    callbacks.letEventsRun = [&] { ++events; };
    unzip.Extract(callbacks);
    CHECK(content() == "new new new new");
    CHECK(events == 4);
}
