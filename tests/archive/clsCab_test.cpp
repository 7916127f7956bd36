#include "archive/clsCab.h"

#include "TestFolder.h"
#include "archive/CabBuilder.h"
#include "archive/CabDirectory.h"
#include "base/Failure.h"
#include "base/modText.h"
#include "base/modWide.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

using namespace vesk;
using namespace vesk::test;

namespace {

using Events = std::vector<std::string>;

/// Writes down every event, and does in it what a test asks for.
struct Recorder : CabEvents {
    Events events;
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
        Note(failure.member + ": " + failure.what + ", " + failure.reason);
    }
};

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
    [[nodiscard]] Events Failures() const {
        Events failures = owner.events;
        std::erase_if(failures, [](const std::string& event) {
            return event.starts_with("before ") || event.starts_with("after ");
        });
        return failures;
    }
    [[nodiscard]] std::string Out(const std::string& name) const {
        return ReadWholeFile(folder / "out\\" + name);
    }
};

std::string Three() {
    return vesk::test::TestCab()
        .Add("one.txt", "1")
        .Add("sub\\deep\\two.txt", "22")
        .Add("three.txt", "333")
        .Bytes();
}

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
    Fixture f(Three());
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
    Fixture f(Three());
    f.cab.FileToExtract = "SUB\\Deep\\TWO.txt";
    f.cab.Extract();
    f.cab.GetInfo();
    CHECK(f.owner.events ==
          Events{"before sub\\deep\\two.txt", "after two.txt", "found sub\\deep>two.txt"});
    CHECK_FALSE(FileExists(f.folder / "out\\one.txt"));

    Fixture twice(TestCab::Of({{"a", "1"}, {"A", "2"}}).Bytes());
    twice.cab.FileToExtract = "a";
    twice.cab.GetInfo();
    CHECK(twice.owner.events == Events{"found >a"});
}

TEST_CASE("the list of members as XML") {
    TestCab cab = TestCab::Of({{"a&b\\<\xE4>'.txt", "12345"}, {"\xD0\x96\\\xE4\xB8\xAD.txt", "1"}});
    cab.members[1].attributes = 0xA0; // in UTF-8
    const std::string xml = Fixture(cab.Bytes()).cab.GetXML();
    CHECK(xml.starts_with("<?xml version=\"1.0\"?><FILES><CABFILE CABFILENAME = '"));
    CHECK(xml.find("' FILECOUNT = '2'></CABFILE>\r\n<FILE>") != std::string::npos);
    CHECK(xml.find("<FULLNAME>a&#38;b\\&#60;&#228;&#62;&#39;.txt</FULLNAME>\r\n"
                   "<NAME>&#60;&#228;&#62;&#39;.txt</NAME>\r\n<DATE>2024-0") != std::string::npos);
    CHECK(xml.find(":42</DATE>\r\n<SIZE>5</SIZE>\r\n<PATH>a&#38;b</PATH>\r\n</FILE>\r\n"
                   "<FILE><FULLNAME>&#1046;\\&#20013;.txt</FULLNAME>") != std::string::npos);
    CHECK(xml.ends_with("<PATH>&#1046;</PATH>\r\n</FILE>\r\n</FILES>\r\n"));
}

TEST_CASE("the owner can cancel, throw, restart and destroy inside an event") {
    Fixture f(Three());
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
    cab.CabName = folder.Write("a.cab", Three());
    cab.DestinationFolder = folder.Write("file", "stands in the way") + "\\below";
    CHECK(FailureNumber([&] { cab.Extract(); }) != 0);
    cab.DestinationFolder = folder / std::string(300, 'x'); // more than a file system takes
    CHECK(FailureNumber([&] { cab.Extract(); }) != 0);
}

TEST_CASE("a damaged member does not stay under its name, and ends nothing but itself") {
    const Events good{"before good.txt", "after good.txt", "before bad.txt"};
    const Events after{"bad.txt: not extracted, its data is damaged", "before after.txt",
                       "after after.txt"};
    const auto cab = [](const std::string& text) {
        return TestCab().Add("good.txt", "1").AddDamaged("bad.txt", text).Add("after.txt", "2");
    };
    // So large that a part of it has been written when the damage is met in unpacking.
    TestCab packed = cab(std::string(11 * 32768, 'a'));
    packed.folders[1].packing = 1;
    for (TestBlock& block : packed.folders[1].blocks)
        block = {.data = "CK" + Deflated(block.data), .unpacked = 32768};
    packed.folders[1].blocks.back().data = "damaged";
    for (const std::string& bytes :
         {cab("data").Bytes(), cab(std::string(40'000, 'a')).Bytes(), packed.Bytes()}) {
        Fixture f(bytes);
        CHECK_THROWS_WITH(f.cab.Extract(), "Invalid data.");
        Events all = good;
        all.insert(all.end(), after.begin(), after.end());
        CHECK(f.owner.events == all);
        CHECK(f.Out("after.txt") == "2");
        CHECK(f.Listing() == "after.txt good.txt");
    }
}

TEST_CASE("members behind damage in the same data are told one by one") {
    TestCab cab = TestCab::Of({{"a", "12345"}, {"b", "678"}, {"empty", ""}, {"..", ""}});
    cab.folders[0].packing = 1;
    Fixture f(cab.Bytes());
    CHECK_THROWS_WITH(f.cab.Extract(), "Invalid data.");
    CHECK(f.Failures() == Events{"a: not extracted, its data is damaged",
                                 "b: not extracted, its data is damaged",
                                 "..: not extracted, its name leads out of the folder"});
    CHECK(f.Listing() == "empty");
}

TEST_CASE("equal files that are stored once come out under each name") {
    const std::string big(300000, 'b');
    TestCab cab = TestCab::Of({{"a.txt", "same"}, {"big.bin", big}, {"c", "x"}});
    for (const std::size_t twin : {std::size_t{0}, std::size_t{1}}) {
        cab.members.push_back(cab.members[twin]);
        cab.members.back().name += ".too";
    }
    Fixture f(cab.Bytes());
    f.cab.Extract();
    CHECK(f.Failures().empty());
    CHECK(f.Out("a.txt.too") == "same");
    CHECK(f.Out("big.bin.too") == big);
    CHECK(f.Out("c") == "x");
    f.cab.FileToExtract = "a.txt.too";
    f.folder.Write("out\\a.txt.too", "old");
    f.cab.Extract();
    CHECK(f.Out("a.txt.too") == "same");
    cab.members[1].name = "aux"; // refused, for its name only: the twin has to do without it
    Fixture other(cab.Bytes());
    CHECK_NOTHROW(other.cab.Extract());
    CHECK(other.Failures() == Events{"aux: not extracted, its name is a device name"});
    CHECK(other.Out("big.bin.too") == big);
}

TEST_CASE("a folder with content is refused, and is no damage") {
    Fixture f(TestCab::Of({{"filled\\", "3"}}).Bytes());
    CHECK_NOTHROW(f.cab.Extract());
    CHECK(f.Failures() == Events{"filled\\: not extracted, it is a folder but has content"});
}

TEST_CASE("of two members that fall onto one name the later one stays, wherever its data lies") {
    TestCab cab = TestCab::Of({{"A/X", "22"}, {"twice", "3"}, {"a\\x", "1"}, {"TWICE", "3"}});
    std::swap(cab.members[0], cab.members[2]);
    Fixture f(cab.Bytes());
    f.cab.Extract();
    const Events told{"A\\X: written over another member, has the same name as a\\x"};
    CHECK(f.Failures() == told);
    CHECK(f.owner.events.size() == 9);
    CHECK(f.Out("a\\x") == "22");
    CHECK(f.Listing() == "A twice");
    f.owner.events.clear();
    f.cab.Test();
    CHECK(f.Failures() == told);
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
    CHECK(damaged.Failures().empty());
    CHECK_THROWS_WITH(damaged.cab.Extract(), "Invalid data.");
    CHECK(damaged.Listing() == "");
}

TEST_CASE("a cabinet that continues in another one stops at its end") {
    TestCab cab = TestCab().Add("first.txt", "1").Add("split.txt", "ab");
    cab.next = "next.cab";
    cab.members[1].size = 4;
    cab.members[1].folder = CabEntry::kToNext;
    cab.folders[1].blocks[0].unpacked = 0; // goes on elsewhere
    Fixture f(cab.Bytes());
    f.folder.Write("next.cab", TestCab().Add("second.txt", "2").Bytes());
    CHECK(f.cab.FileCount() == 2);
    CHECK_THROWS_AS(f.cab.Extract(), Failure);
    CHECK(f.owner.events == Events{"before first.txt", "after first.txt", "before split.txt",
                                   "split.txt: not extracted, it continues in another cabinet"});
    CHECK(f.Listing() == "first.txt");
}
