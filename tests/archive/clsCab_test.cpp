#include "archive/clsCab.h"

#include "TestFolder.h"
#include "archive/ZipBuilder.h"
#include "base/Failure.h"
#include "base/UniqueHandle.h"
#include "base/modText.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

using namespace vesk;
using vesk::test::TestFolder;
using vesk::test::U16;
using vesk::test::U32;

namespace {

constexpr std::size_t kUnchecked = 0;      // a data block with this checksum is not checked
constexpr std::size_t kWrong = 0x12345678; // the checksum of no block used here
constexpr std::size_t kDate = (2024 - 1980) << 9 | 2 << 5 | 29;
constexpr std::size_t kTime = 13 << 11 | 37 << 5 | 42 / 2;

struct Member {
    std::string name;
    std::vector<std::string> blocks; ///< Its content, in data blocks of at most 32,768 bytes.
    std::size_t lastChecksum = kUnchecked;
    std::size_t missing = 0; ///< Bytes that a following cabinet would hold.
};

/// The bytes of a cabinet that holds its members uncompressed, each in a folder of its own.
std::string CabBytes(const std::vector<Member>& members, const std::string& nextCabinet = {}) {
    std::string reserved; // names of the next cabinet and its disk, when there is one
    if (!nextCabinet.empty())
        reserved = nextCabinet + std::string("\0disk 2\0", 8);
    const std::size_t headerSize = 36 + reserved.size();
    const std::size_t filesAt = headerSize + 8 * members.size();
    std::size_t dataAt = filesAt;
    for (const Member& member : members)
        dataAt += 16 + member.name.size() + 1;

    std::string folders, files, data;
    for (std::size_t i = 0; i < members.size(); ++i) {
        const Member& member = members[i];
        folders += U32(dataAt + data.size()); // where the folder's first data block stands
        folders += U16(member.blocks.size());
        folders += U16(0); // not compressed
        std::size_t size = member.missing;
        for (const std::string& block : member.blocks) {
            const bool last = &block == &member.blocks.back();
            data += U32(last ? member.lastChecksum : kUnchecked);
            data += U16(block.size());                                   // packed
            data += U16(last && member.missing != 0 ? 0 : block.size()); // 0: goes on elsewhere
            data += block;
            size += block.size();
        }
        files += U32(size) + U32(0);                    // size, offset in its folder
        files += U16(member.missing != 0 ? 0xFFFE : i); // folder; 0xFFFE: continued to next
        files += U16(kDate) + U16(kTime) + U16(0x20);
        files += member.name + '\0';
    }
    std::string bytes = "MSCF" + U32(0) + U32(dataAt + data.size()) + U32(0) + U32(filesAt) +
                        U32(0) + "\x03\x01"; // format 1.3
    bytes += U16(members.size()) + U16(members.size());
    bytes += U16(nextCabinet.empty() ? 0 : 2) + U16(0) + U16(0); // flags, set, place in the set
    return bytes + reserved + folders + files + data;
}

/// Writes down every event, and does in it what a test asks for.
struct Recorder : CabEvents {
    std::vector<std::string> events;
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
    cab.DestinationFolder = folder / std::string(240, 'x');
    CHECK_THROWS_WITH(cab.Extract(), "The file name is too long.");
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

TEST_CASE("names that lead elsewhere are left out, the rest is written") {
    std::vector<Member> members = {{"first.txt", {"1"}}};
    for (const char* name : {"..\\up.txt", "C:\\vesk-root.txt", "\\vesk-root.txt", "a:stream"})
        members.push_back({name, {"x"}});
    members.push_back({"slash/last.txt", {"9"}});
    Fixture f(CabBytes(members));
    f.cab.Extract();
    CHECK(f.Out("first.txt") == "1");
    CHECK(f.Out("slash\\last.txt") == "9");
    for (const std::string& outside :
         {f.folder / "up.txt", std::string("C:\\vesk-root.txt"), f.folder / "out\\a"}) {
        CAPTURE(outside);
        CHECK_FALSE(FileExists(outside));
    }
}

TEST_CASE("a damaged member does not stay under its name") {
    const std::string full(32768, 'a');
    struct Row {
        const char* what;
        std::string bytes;
    };
    const std::string good = CabBytes({{"good.txt", {"1"}}, {"bad.txt", {full, "tail"}}});
    for (const Row& row :
         {Row{"first block", CabBytes({{"good.txt", {"1"}}, {"bad.txt", {"data"}, kWrong}})},
          Row{"later block", CabBytes({{"good.txt", {"1"}}, {"bad.txt", {full, "tail"}, kWrong}})},
          Row{"cut short", good.substr(0, good.size() - 2)}}) {
        CAPTURE(row.what);
        Fixture f(row.bytes);
        CHECK_THROWS_WITH(f.cab.Extract(), "Invalid data.");
        CHECK(f.owner.events == Events{"before good.txt", "after good.txt", "before bad.txt"});
        CHECK(f.Out("good.txt") == "1");
        CHECK_FALSE(FileExists(f.folder / "out\\bad.txt"));
    }
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
