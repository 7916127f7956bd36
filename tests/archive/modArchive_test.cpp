#include "archive/modArchive.h"

#include "ExpectedText.h"
#include "archive/ArchiveText.h"
#include "archive/NameTable.h"
#include "archive/TreeOnDisk.h"
#include "base/Failure.h"
#include "base/Problem.h"
#include "base/modSystemError.h"
#include "base/modUtf8.h"

using namespace vesk;
using namespace vesk::test;

namespace {

const std::string kLong(5 << 20, 'x'); ///< More than is held in memory at once.

/// A member as either kind of archive can hold it, with its name in UTF-8.
struct File {
    std::string name, text;
    Fields fields = {}; ///< "attributes", "date" and "time" of DOS.
    bool isDamaged = false;
};

/// "name=text|...": "!" in front of a name damages the member, "d:" makes it a folder of DOS; "*"
/// stands for the long text.
std::vector<File> FilesOf(const std::string& list) {
    std::vector<File> files;
    for (const std::string& item : Split(list, '|')) {
        const std::size_t sign = item.find('=');
        File& file = files.emplace_back(
            File{item.substr(0, sign), ReplaceAll(item.substr(sign + 1), "*", kLong)});
        file.isDamaged = item[0] == '!';
        if (item.starts_with("d:"))
            file.fields["attributes"] = FILE_ATTRIBUTE_DIRECTORY;
        file.name.erase(0, file.isDamaged ? 1 : file.fields.empty() ? 0 : 2);
    }
    return files;
}

std::string Zip(const std::vector<File>& files) {
    std::vector<TestMember> members;
    for (const File& file : files) {
        TestMember& member = members.emplace_back(TestMember::Stored(file.name, file.text));
        member.fields["crc"] ^= file.isDamaged ? 1U : 0U;
        member.fields["flags"] = 0x800;
        member.fields.merge(Fields(file.fields));
    }
    return MakeZip(members);
}

std::string Cab(const std::vector<File>& files) {
    vesk::test::TestCab cab;
    for (const File& file : files) {
        const std::string number = std::to_string(cab.members.size());
        cab.Add(file.name, file.text);
        for (const auto& [field, value] : file.fields)
            cab.fields["member" + number + "." + field] = value;
        cab.fields["member" + number + ".attributes"] |= 0xA0U;
        if (file.isDamaged)
            cab.fields["block" + number + "." + std::to_string(cab.folders.back().size() - 1) +
                       ".checksum"] = 0x12345678;
    }
    return cab.Bytes();
}

struct Kind {
    const char* path;
    std::string (*make)(const std::vector<File>&);
    const char* whyDamaged;
};
const Kind kKinds[] = {{"x.zip", Zip, "wrong CRC"}, {"x.CAB", Cab, "its data is damaged"}};

/// An archive of some kind.
struct Archive : Extracting {
    Archive(const Kind& kind, const std::vector<File>& files)
        : Extracting(kind.path, kind.make(files)) {}
    [[nodiscard]] Tree Found() const { return TreeIn(target); }
    [[nodiscard]] std::string Listed() const { return ReplaceAll(ListedIn(target), kLong, "*"); }
    /// @return a line for each failure
    [[nodiscard]] std::string Told(const ExtractionOwner& owner = {}) const {
        return Lines(ExtractArchive(path, target, owner).failures);
    }
};

SYSTEMTIME LocalTimeOf(const std::string& path) {
    const FILETIME time = DataOf(path).ftLastWriteTime;
    SYSTEMTIME utc{}, local{};
    FileTimeToSystemTime(&time, &utc);
    SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
    return local;
}

/// Signs of the table that stand for long names, for the long text and for what a kind says of
/// damage.
std::string Shortened(std::string text, const Kind& kind) {
    for (const auto& [sign, meaning] : {std::pair{"*", kLong},
                                        {"@", std::string(300, 'n')},
                                        {"#", std::string(200, 'x')},
                                        {"%", std::string(kind.whyDamaged)}})
        text = ReplaceAll(text, meaning, sign);
    return Escaped(ReplaceAll(text, "\n", "; "));
}

/// What becomes of "FILES < FILES", the latter being there before, read-only and hidden.
std::string Becoming(const std::string& line, const Kind& kind) {
    const std::string text = ReplaceAll(ReplaceAll(Unescaped(line), "#", std::string(200, 'x')),
                                        "@", std::string(300, 'n'));
    const std::size_t before = text.find(" < ");
    const Archive archive(kind, FilesOf(text.substr(0, before)));
    if (before != std::string::npos)
        for (const File& file : FilesOf(text.substr(before + 3)))
            SetFileAttributesA(archive.folder.Write("out\\" + file.name, file.text).c_str(),
                               FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    std::string told;
    for (int again = 0; again < 2; ++again) {
        const auto outcome = ExtractArchive(archive.path, archive.target, {});
        const std::string now = Lines(outcome.failures) + "<" + archive.Listed() + "> " +
                                std::to_string(outcome.extracted);
        told += told == now ? "" : now;
        CHECK(InspectArchive(archive.path) == outcome.failures);
    }
    CHECK(TreeIn(archive.folder.Path()).size() == archive.Found().size() + 2);
    return Shortened(told, kind);
}

} // namespace

TEST_CASE("what becomes of members, in both kinds of archive") {
    for (const Kind& kind : kKinds)
        CheckLines("members", [&](const std::string& line) { return Becoming(line, kind); });
}

TEST_CASE("valid names come out as themselves and hostile ones not at all") {
    std::vector<File> files;
    std::string reasons;
    Tree expected;
    for (const auto& [name, path, reason] : NameTable()) {
        files.push_back({name, std::to_string(files.size())});
        if (path.empty())
            reasons += reason + "\n";
        else
            expected[*FromUtf8(path)] = files.back().text;
    }
    CHECK(expected.size() == 360);
    CHECK(files.size() - expected.size() == 316);
    const bool western = GetACP() == 1252; // elsewhere other characters look like strokes
    for (const Kind& kind : kKinds) {
        CAPTURE(kind.path);
        const Archive archive(kind, files);
        const ExtractionOutcome outcome = ExtractArchive(archive.path, archive.target, {});
        std::string told;
        for (const MemberFailure& failure : outcome.failures)
            told += failure.reason + "\n";
        CHECK((told == reasons || !western));
        CHECK(InspectArchive(archive.path) == outcome.failures);
        Tree found = archive.Found();
        std::erase_if(found, [](const auto& entry) { return entry.first.ends_with(L'\\'); });
        std::string differing; // told rather than two maps
        for (const auto& [path, text] : expected)
            if (!found.contains(path) || found.at(path) != text)
                differing += Narrowed(path) + " ";
        CHECK(differing == "");
        CHECK(found.size() == expected.size());
        CHECK(TreeIn(archive.folder.Path()).size() == archive.Found().size() + 2);
    }
}

TEST_CASE("of very many problems the first are told, and how many more there are") {
    for (const Kind& kind : kKinds) {
        const Archive archive(kind, std::vector<File>(1002, {"../x", ""}));
        const auto failures = ExtractArchive(archive.path, archive.target, {}).failures;
        REQUIRE(failures.size() == 1001);
        CHECK(failures.back() ==
              MemberFailure{"", "not told in full", "there are 2 more problems like these"});
        CHECK(InspectArchive(archive.path) == failures);
    }
}

TEST_CASE("what stands in the way is told") {
    const std::string inUse = AsReason(SystemErrorText(ERROR_SHARING_VIOLATION));
    for (const Kind& kind : kKinds) {
        CAPTURE(kind.path);
        const Archive archive(
            kind,
            {{"folder", "x"}, {"file/sub", "x"}, {"locked", "x"}, {"fine", "x"}, {"file/", ""}});
        CreateFolderPath(archive / "folder");
        archive.folder.Write("out\\file", "old");
        const std::string locked = archive.folder.Write("out\\locked", "old");
        SetFileAttributesA(locked.c_str(), FILE_ATTRIBUTE_READONLY);
        {
            const FileHandle lock = OpenExclusively(locked);
            CHECK(archive.Told() == "folder: not extracted, there is a folder in its place\n"
                                    "file\\sub: not extracted, its path leads through a file\n"
                                    "locked: not written, " +
                                        inUse +
                                        "\nfile\\: not extracted, its path leads through a file\n");
        }
        CHECK(archive.Listed() == "file=old|fine=x|folder\\=|locked=old");
        CHECK((GetFileAttributesA(locked.c_str()) & FILE_ATTRIBUTE_READONLY) != 0);
        CHECK(Lines(ExtractArchive(archive.path, locked, {}).failures) ==
              ": not extracted, " + AsReason(SystemErrorText(ERROR_ALREADY_EXISTS)) + "\n");
    }
}

TEST_CASE("times and attributes are restored, and the next extraction replaces them") {
    const Fields stamp = {{"date", (2024 - 1980) << 9 | 2 << 5 | 29},
                          {"time", 13 << 11 | 37 << 5 | 42 / 2}};
    for (const Kind& kind : kKinds) {
        CAPTURE(kind.path);
        const Archive archive(kind, {{"folder/", "", stamp},
                                     {"folder/plain", "1", stamp},
                                     {"special", "2", {{"attributes", 7}, {"date", 0}}},
                                     {"gone", kLong, {{"attributes", 7}}, true}});
        for (int round = 0; round < 2; ++round) {
            CHECK(archive.Told() == std::string("gone: not extracted, ") + kind.whyDamaged + "\n");
            CHECK(archive.Listed() == "folder\\=|folder\\plain=1|special=2"); // whose day is 0
            CHECK((GetFileAttributesA((archive / "special").c_str()) & 7) == 7);
            CHECK((GetFileAttributesA((archive / "folder\\plain").c_str()) & 7) == 0);
        }
        for (const char* name : {"folder", "folder\\plain"}) {
            const SYSTEMTIME time = LocalTimeOf(archive / name);
            CHECK(std::vector<int>{time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute,
                                   time.wSecond} == std::vector<int>{2024, 2, 29, 13, 37, 42});
        }
    }
}

TEST_CASE("a large member is told of while it comes, and stands under its name when complete") {
    for (const Kind& kind : kKinds)
        for (const char* old : {"", "old"}) {
            CAPTURE(kind.path);
            const Archive archive(kind, FilesOf("!bad=x|large=**|small=x"));
            if (*old != '\0')
                SetFileAttributesA(archive.folder.Write("out\\large", old).c_str(),
                                   FILE_ATTRIBUTE_READONLY);
            double before = 0;
            int steps = 0;
            ExtractionOwner owner;
            owner.progress = [&](double fraction) {
                CHECK(fraction >= before);
                CHECK(fraction - before < 0.2);
                steps += fraction > before ? 1 : 0;
                before = fraction;
                if (fraction < 0.99)
                    CHECK(ReadWholeFile(archive / "large") == old);
            };
            CHECK(archive.Told(owner) ==
                  std::string("bad: not extracted, ") + kind.whyDamaged + "\n");
            CHECK(before == 1);
            CHECK(steps > 7);
            CHECK(archive.Listed() == "large=**|small=x");
        }
}

TEST_CASE("what an owner throws ends the extraction and is not taken for a member's failure") {
    for (const Kind& kind : kKinds) {
        const Archive archive(kind, FilesOf("large=*"));
        ExtractionOwner owner;
        owner.progress = [](double fraction) {
            if (fraction > 0.3)
                throw Failure(5, "owner", "enough");
        };
        CHECK_THROWS_WITH(archive.Told(owner), "enough");
        CHECK(archive.Found().empty());
        CHECK(archive.Told() == "");
    }
}
