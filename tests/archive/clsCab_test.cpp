#include "archive/clsCab.h"

#include "TestFolder.h"
#include "archive/CabBuilder.h"
#include "archive/modArchive.h"
#include "base/Failure.h"
#include "base/UniqueHandle.h"
#include "base/modText.h"
#include "base/modWide.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

using namespace vesk;
using namespace vesk::test;

namespace {

constexpr std::uint32_t kUnchecked = 0;      // a data block with this checksum is not checked
constexpr std::uint32_t kWrong = 0x12345678; // the checksum of no block used here

struct Member {
    std::string name;
    std::vector<std::string> blocks; ///< Its content, in data blocks of at most 32,768 bytes.
    std::uint32_t lastChecksum = kUnchecked;
    std::uint32_t missing = 0; ///< Bytes that a following cabinet would hold.
};

/// The bytes of a cabinet that holds its members uncompressed, each in a folder of its own.
std::string CabBytes(const std::vector<Member>& members, const std::string& nextCabinet = {}) {
    TestCab cab;
    cab.next = nextCabinet;
    for (const Member& member : members) {
        TestFolderData folder;
        std::size_t size = member.missing;
        for (const std::string& data : member.blocks) {
            folder.blocks.push_back({.data = data, .checksum = kUnchecked});
            size += data.size();
        }
        if (!folder.blocks.empty())
            folder.blocks.back().checksum = member.lastChecksum;
        if (member.missing != 0)
            folder.blocks.back().unpacked = 0; // goes on elsewhere
        const std::size_t index = member.missing != 0 ? 0xFFFE : cab.folders.size();
        cab.members.push_back({.name = member.name,
                               .size = static_cast<std::uint32_t>(size),
                               .folder = static_cast<std::uint16_t>(index)});
        cab.folders.push_back(folder);
    }
    return cab.Bytes();
}

/// Writes down every event, and does in it what a test asks for.
struct Recorder : CabEvents {
    std::vector<std::string> events;
    std::vector<std::string> failures;
    std::vector<double> progress;
    std::function<void(const std::string& event, bool& cancel)> react;

    void Note(const std::string& event, bool&& cancel = false) { Note(event, cancel); }
    void Note(const std::string& event, bool& cancel) {
        events.push_back(event);
        if (react)
            react(event, cancel);
    }
    void OnFileFound(const CabMember& member) override {
        Note("found " + member.folder + ">" + member.fileName);
    }
    void OnBeforeExtract(bool& cancel, const std::string& name) override {
        Note("before " + name, cancel);
    }
    void OnAfterExtract(const std::string& targetPath) override {
        Note("after " + FileNameOf(targetPath));
    }
    void OnNotExtracted(const MemberFailure& failure) override {
        failures.push_back(failure.member + ": " + failure.what + ", " + failure.reason);
    }
    void OnProgress(double fraction) override { progress.push_back(fraction); }
};

using Events = std::vector<std::string>;

struct Fixture {
    TestFolder folder;
    Recorder owner;
    clsCab cab{&owner};

    explicit Fixture(const std::string& bytes) {
        cab.CabName = folder.Write("x.cab", bytes);
        cab.DestinationFolder = folder / "out";
    }
    /// What stands in the target folder, and nothing else may.
    [[nodiscard]] std::string Listing() const {
        std::string names;
        ForEachEntry(Widen(folder / "out"), [&](const FolderEntry& entry) {
            names += (names.empty() ? "" : " ") + Narrowed(entry.name);
        });
        return names;
    }
    [[nodiscard]] std::string Out(const std::string& name) const {
        return ReadWholeFile(folder / "out\\" + name);
    }
};

const std::vector<Member> kThree = {
    {"one.txt", {"1"}}, {"sub\\deep\\two.txt", {"22"}}, {"three.txt", {"333"}}};

std::uint32_t FailureNumber(const std::function<void()>& action) {
    try {
        action();
    } catch (const Failure& failure) {
        CHECK(failure.source == "CabFile");
        return failure.number;
    }
    return 0;
}

} // namespace

TEST_CASE("members are counted, listed and extracted, with their folders") {
    Fixture f(CabBytes(kThree));
    CHECK(f.cab.FileCount() == 3);
    f.cab.GetInfo();
    CHECK(f.owner.events ==
          Events{"found >one.txt", "found sub\\deep>two.txt", "found >three.txt"});
    CHECK_FALSE(FolderExists(f.folder / "out"));
    f.owner.events.clear();
    f.cab.Extract();
    CHECK(f.owner.events == Events{"before one.txt", "after one.txt", "before sub\\deep\\two.txt",
                                   "after two.txt", "before three.txt", "after three.txt"});
    CHECK(f.Out("sub\\deep\\two.txt") == "22");
    f.cab.DestinationFolder.clear();
    f.cab.Extract();
    CHECK(ReadWholeFile(f.folder / "three.txt") == "333");
}

TEST_CASE("a member named in any letter case is the only one looked at") {
    Fixture f(CabBytes(kThree));
    f.cab.FileToExtract = "SUB\\Deep\\TWO.txt";
    f.cab.Extract();
    f.cab.GetInfo();
    CHECK(f.owner.events ==
          Events{"before sub\\deep\\two.txt", "after two.txt", "found sub\\deep>two.txt"});
    CHECK_FALSE(FileExists(f.folder / "out\\one.txt"));

    Fixture twice(CabBytes({{"a", {"1"}}, {"A", {"2"}}}));
    twice.cab.FileToExtract = "a";
    twice.cab.GetInfo();
    CHECK(twice.owner.events == Events{"found >a"});
}

TEST_CASE("the list of members as XML") {
    Fixture f(CabBytes({{"a&b\\<\xE4>'.txt", {"12345"}}}));
    const std::string xml = f.cab.GetXML();
    CHECK(xml.starts_with("<?xml version=\"1.0\"?><FILES><CABFILE CABFILENAME = '"));
    CHECK(xml.find("' FILECOUNT = '1'></CABFILE>\r\n<FILE>") != std::string::npos);
    CHECK(xml.find("<FULLNAME>a&#38;b\\&#60;&#228;&#62;&#39;.txt</FULLNAME>\r\n"
                   "<NAME>&#60;&#228;&#62;&#39;.txt</NAME>\r\n<DATE>2024-0") != std::string::npos);
    CHECK(xml.ends_with(":42</DATE>\r\n<SIZE>5</SIZE>\r\n<PATH>a&#38;b</PATH>\r\n</FILE>\r\n"
                        "</FILES>\r\n"));
}

TEST_CASE("the owner can cancel, throw, restart and destroy inside an event") {
    Fixture f(CabBytes(kThree));
    SUBCASE("cancel") {
        f.owner.react = [](const std::string& event, bool& cancel) {
            cancel = event == "before one.txt";
        };
        f.cab.Extract();
        CHECK(f.owner.events == Events{"before one.txt", "before sub\\deep\\two.txt",
                                       "after two.txt", "before three.txt", "after three.txt"});
        CHECK_FALSE(FileExists(f.folder / "out\\one.txt"));
    }
    SUBCASE("throw") {
        f.owner.react = [](const std::string& event, bool&) {
            if (event == "after one.txt")
                throw std::runtime_error("from the owner");
        };
        CHECK_THROWS_WITH(f.cab.Extract(), "from the owner");
        CHECK(f.owner.events == Events{"before one.txt", "after one.txt"});
        CHECK(f.Out("one.txt") == "1");
        f.owner.react = nullptr;
        CHECK(f.cab.FileCount() == 3);
    }
    SUBCASE("restart") {
        int refused = 0;
        f.owner.react = [&](const std::string&, bool&) {
            clsCab other;
            other.CabName = f.cab.CabName;
            refused += FailureNumber([&] { other.FileCount(); }) == ERROR_BUSY;
            refused += FailureNumber([&] { f.cab.Extract(); }) == ERROR_BUSY;
        };
        f.cab.Extract();
        CHECK(refused == 12);
        CHECK(f.Out("three.txt") == "333");
    }
    SUBCASE("destroy") {
        const std::string path = f.cab.CabName;
        for (const std::string lastEvent : {"before one.txt", "after one.txt"}) {
            CAPTURE(lastEvent);
            Recorder owner;
            auto cab = std::make_unique<clsCab>(&owner);
            cab->CabName = path;
            cab->DestinationFolder = f.folder / "out";
            owner.react = [&](const std::string& event, bool&) {
                if (event == lastEvent)
                    cab.reset();
            };
            cab->Extract();
            CHECK(owner.events.back() == lastEvent);
            CHECK(FileExists(f.folder / "out\\one.txt") == (lastEvent == "after one.txt"));
        }
        CHECK_FALSE(FolderExists(f.folder / "out\\sub"));
    }
}

TEST_CASE("what cannot be read raises the system's number and a fixed text") {
    const TestFolder folder;
    clsCab cab;
    for (const auto& method :
         std::vector<std::function<void()>>{[&] { cab.FileCount(); }, [&] { cab.Extract(); },
                                            [&] { cab.GetInfo(); }, [&] { cab.GetXML(); }})
        CHECK(FailureNumber(method) == 0x800407A4);
    CHECK_THROWS_WITH(cab.FileCount(), "You must set the CabName property before taking any "
                                       "action on the CabFile object.");
    cab.CabName = folder / "none.cab";
    CHECK(FailureNumber([&] { cab.Extract(); }) == 2);
    CHECK_THROWS_WITH(cab.Extract(), "The system cannot find the file specified.");
    cab.CabName = folder.Write("text.cab", "this is no cabinet, only text of some length");
    CHECK_THROWS_WITH(cab.Extract(), "Invalid data.");
    cab.CabName = folder.Write("a.cab", CabBytes(kThree));
    cab.DestinationFolder = folder.Write("file", "stands in the way") + "\\below";
    CHECK(FailureNumber([&] { cab.Extract(); }) != 0);
    cab.DestinationFolder = folder / std::string(300, 'x'); // more than a file system takes
    CHECK(FailureNumber([&] { cab.Extract(); }) != 0);
}

TEST_CASE("a file in the way is written over, or stays as it is when it is in use") {
    Fixture f(CabBytes(kThree));
    const std::string path = f.folder.Write("out\\one.txt", "older and longer");
    {
        const FileHandle lock(
            CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        CHECK(FailureNumber([&] { f.cab.Extract(); }) != 0);
    }
    CHECK(f.Out("one.txt") == "older and longer");
    f.cab.Extract();
    CHECK(f.Out("one.txt") == "1");
}

TEST_CASE("a damaged member does not stay under its name, and ends nothing but itself") {
    const std::string full(32768, 'a');
    struct Row {
        const char* what;
        std::string bytes;
    };
    const Member good{"good.txt", {"1"}};
    const Member after{"after.txt", {"2"}};
    // So large that a part of it has been written when the damage is met.
    TestCab packed = TestCab::Of({{"good.txt", ""}, {"bad.txt", ""}});
    packed.members[1].size = 11 * 32768;
    packed.folders[0].packing = 1;
    const std::string block = "CK\x01" + U16(32768) + U16(32767) + full;
    packed.folders[0].blocks.assign(10, {.data = block, .checksum = 0, .unpacked = 32768});
    packed.folders[0].blocks.push_back({.data = "damaged", .checksum = 0, .unpacked = 32768});
    packed.folders.push_back({.blocks = {{"2"}}});
    packed.members.push_back({.name = "after.txt", .size = 1, .folder = 1});
    for (const Row& row :
         {Row{"first block", CabBytes({good, {"bad.txt", {"data"}, kWrong}, after})},
          Row{"later block", CabBytes({good, {"bad.txt", {full, "tail"}, kWrong}, after})},
          Row{"found in unpacking", packed.Bytes()}}) {
        CAPTURE(row.what);
        Fixture f(row.bytes);
        CHECK_THROWS_WITH(f.cab.Extract(), "Invalid data.");
        CHECK(f.owner.events == Events{"before good.txt", "after good.txt", "before bad.txt",
                                       "before after.txt", "after after.txt"});
        CHECK(f.owner.failures == Events{"bad.txt: not extracted, its data is damaged"});
        CHECK(f.Out("after.txt") == "2");
        CHECK(f.Listing() == "after.txt good.txt");
    }
}

TEST_CASE("members behind damage in the same data are told one by one") {
    TestCab cab = TestCab::Of({{"a", "12345"}, {"b", "678"}, {"empty", ""}});
    cab.folders[0].packing = 1;
    cab.folders[0].blocks[0].checksum = kUnchecked;
    Fixture f(cab.Bytes());
    CHECK_THROWS_WITH(f.cab.Extract(), "Invalid data.");
    CHECK(f.owner.failures ==
          Events{"a: not extracted, its data is damaged", "b: not extracted, its data is damaged"});
    CHECK(f.Listing() == "empty");
}

TEST_CASE("equal files that are stored once come out under each name") {
    const std::string big(300000, 'b');
    TestCab cab = TestCab::Of({{"a.txt", "same"}, {"big.bin", big}, {"c", "x"}});
    const std::string data = std::move(cab.folders[0].blocks[0].data);
    cab.folders[0].blocks.clear();
    for (std::size_t at = 0; at < data.size(); at += 32768)
        cab.folders[0].blocks.push_back({data.substr(at, 32768)});
    for (const std::size_t twin : {std::size_t{0}, std::size_t{1}}) {
        cab.members.push_back(cab.members[twin]);
        cab.members.back().name += ".too";
    }
    Fixture f(cab.Bytes());
    f.cab.Extract();
    CHECK(f.owner.failures.empty());
    CHECK(f.Out("a.txt.too") == "same");
    CHECK(f.Out("big.bin.too") == big);
    CHECK(f.Out("c") == "x");
    cab.members[1].name = "aux"; // refused: the twin has to do without it
    Fixture other(cab.Bytes());
    CHECK_NOTHROW(other.cab.Extract());
    CHECK(other.owner.failures.size() == 1);
    CHECK(other.Out("big.bin.too") == big);
    f.cab.FileToExtract = "a.txt.too";
    f.folder.Write("out\\a.txt.too", "old");
    f.cab.Extract();
    CHECK(f.Out("a.txt.too") == "same");
}

TEST_CASE("members get their stored attributes and times, and the next extraction replaces them") {
    TestCab cab = TestCab::Of({{"plain", "1"}, {"special", "2"}});
    cab.members[1].attributes = 0x01 | 0x02 | 0x04;
    cab.members[1].date = 0; // no day
    Fixture f(cab.Bytes());
    for (int round = 0; round < 2; ++round) {
        f.cab.Extract();
        CHECK(f.Out("special") == "2");
        const DWORD attributes = GetFileAttributesA((f.folder / "out\\special").c_str());
        CHECK((attributes & 7) == 7);
        CHECK((GetFileAttributesA((f.folder / "out\\plain").c_str()) & 7) == 0);
    }
    WIN32_FILE_ATTRIBUTE_DATA data{};
    SYSTEMTIME utc{}, local{};
    GetFileAttributesExA((f.folder / "out\\plain").c_str(), GetFileExInfoStandard, &data);
    FileTimeToSystemTime(&data.ftLastWriteTime, &utc);
    SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
    CHECK(local.wYear == 2024);
    CHECK(local.wMonth == 2);
    CHECK(local.wDay == 29);
    CHECK(local.wHour == 13);
    CHECK(local.wMinute == 37);
    CHECK(local.wSecond == 42);
    CHECK(f.Listing() == "plain special");
}

TEST_CASE("names in Unicode and long paths are no trouble") {
    TestCab cab = TestCab::Of({{"\xD0\x96\\\xE4\xB8\xAD.txt", "1"}, {"\xE4", "2"}, {"\xFF", "3"}});
    cab.members[0].attributes = 0xA0;
    cab.members[2].attributes = 0xA0; // is no UTF-8
    Fixture f(cab.Bytes());
    f.cab.DestinationFolder += "\\" + std::string(200, 'x') + "\\" + std::string(100, 'y');
    f.cab.Extract();
    CHECK(f.owner.failures.empty());
    const std::wstring out = LongPath(f.cab.DestinationFolder) + L"\\";
    for (const wchar_t* name : {L"\u0416\\\u4E2D.txt", L"\u00E4", L"\u00FF"})
        CHECK(GetFileAttributesW((out + name).c_str()) != INVALID_FILE_ATTRIBUTES);
    CHECK(f.cab.GetXML().find("<FULLNAME>&#1046;\\&#20013;.txt</FULLNAME>") != std::string::npos);
}

TEST_CASE("of two members that fall onto one name the later one stays, wherever its data lies") {
    TestCab cab = TestCab::Of({{"A/X", "22"}, {"twice", "3"}, {"a\\x", "1"}, {"TWICE", "3"}});
    std::swap(cab.members[0], cab.members[2]);
    Fixture f(cab.Bytes());
    f.cab.Extract();
    const Events told{"A\\X: written over another member, has the same name as a\\x"};
    CHECK(f.owner.failures == told);
    CHECK(f.owner.events.size() == 8);
    CHECK(f.Out("a\\x") == "22");
    CHECK(f.Listing() == "A twice");
    f.owner.failures.clear();
    f.cab.Test();
    CHECK(f.owner.failures == told);
}

TEST_CASE("LZX is unpacked by the system, and of it a test compares the checksums only") {
    const auto lzx = [](unsigned word) { // a block that is not compressed is of kind 3
        TestCab cab = TestCab::Of({{"a", "12345678"}});
        cab.folders[0].packing = 15 << 8 | 3;
        cab.folders[0].blocks[0].data =
            U16(word) + U16(8 << 4) + U32(1) + U32(1) + U32(1) + "12345678";
        cab.folders[0].blocks[0].unpacked = 8;
        return cab;
    };
    Fixture f(lzx(0x3000).Bytes());
    f.cab.Extract();
    CHECK(f.Out("a") == "12345678");
    Fixture damaged(lzx(0).Bytes());
    damaged.cab.Test();
    CHECK(damaged.owner.failures.empty());
    CHECK_THROWS_WITH(damaged.cab.Extract(), "Invalid data.");
    CHECK(damaged.Listing() == "");
}

TEST_CASE("folders and empty files need no data") {
    TestCab cab;
    cab.folders.resize(1);
    cab.members = {{.name = "one\\"}, {.name = "two", .attributes = 0x10}, {.name = "three"}};
    Fixture f(cab.Bytes());
    f.cab.Extract();
    CHECK(FolderExists(f.folder / "out\\one"));
    CHECK(FolderExists(f.folder / "out\\two"));
    WIN32_FILE_ATTRIBUTE_DATA data{};
    SYSTEMTIME utc{};
    GetFileAttributesExA((f.folder / "out\\one").c_str(), GetFileExInfoStandard, &data);
    FileTimeToSystemTime(&data.ftLastWriteTime, &utc);
    CHECK(utc.wYear == 2024);
    CHECK(FileExists(f.folder / "out\\three"));
}

TEST_CASE("progress counts bytes, within a large member too") {
    const std::vector<std::string> mebibytes(96, std::string(32768, 'm')); // three of them
    Fixture f(CabBytes({{"large", mebibytes}, {"bad", {"12"}, kWrong}, {"small", {"3"}}}));
    CHECK_THROWS_WITH(f.cab.Extract(), "Invalid data.");
    CHECK(std::ranges::is_sorted(f.owner.progress));
    CHECK(f.owner.progress.back() == 1.0);
    CHECK(std::ranges::count_if(f.owner.progress, [](double p) { return p > 0 && p < 0.99; }) >= 2);
}

TEST_CASE("a cabinet as an archive: what is not extracted, and what would not be") {
    const TestFolder folder;
    const auto extract = [&](const std::string& bytes) {
        return ExtractArchive(folder.Write("x.CAB", bytes), folder / "out", {});
    };
    TestCab cab = TestCab::Of({{"good", "1"}, {"..", "2"}, {"filled\\", "3"}});
    const ExtractionOutcome outcome = extract(cab.Bytes());
    CHECK(outcome.extracted == 1);
    const std::vector<MemberFailure> refused{
        {"..", "not extracted", "its name leads out of the folder"},
        {"filled\\", "not extracted", "it is a folder but has content"}};
    clsCab plain;
    plain.CabName = folder / "x.CAB";
    plain.DestinationFolder = folder / "again";
    CHECK_NOTHROW(plain.Extract()); // what is only named wrongly is left out
    CHECK(outcome.failures == refused);
    CHECK(InspectArchive(folder / "x.CAB") == refused);

    cab.folders.clear();
    const std::vector<MemberFailure> whole{
        {"", "not extracted", "it lists files but holds no data for them"}};
    CHECK(extract(cab.Bytes()).failures == whole);
    CHECK(InspectArchive(folder / "x.CAB") == whole);
    CHECK(ExtractArchive(folder / "none.cab", folder / "out", {}).failures.size() == 1);

    ExtractionOwner throwing;
    throwing.progress = [](double) { throw Failure(5, "owner", "from the owner"); };
    folder.Write("x.CAB", CabBytes(kThree));
    CHECK_THROWS_WITH(ExtractArchive(folder / "x.CAB", folder / "out", throwing), "from the owner");
}

TEST_CASE("a cabinet that continues in another one stops at its end") {
    const std::string next = CabBytes({{"second.txt", {"2"}}});
    Fixture f(CabBytes({{"first.txt", {"1"}}}, "next.cab"));
    f.folder.Write("next.cab", next);
    f.cab.Extract();
    CHECK(f.owner.events == Events{"before first.txt", "after first.txt"});

    Fixture split(
        CabBytes({{"first.txt", {"1"}}, {"split.txt", {"ab"}, kUnchecked, 2}}, "next.cab"));
    split.folder.Write("next.cab", next);
    CHECK(split.cab.FileCount() == 2);
    CHECK_THROWS_AS(split.cab.Extract(), Failure);
    CHECK(split.Out("first.txt") == "1");
    CHECK_FALSE(FileExists(split.folder / "out\\split.txt"));
}
