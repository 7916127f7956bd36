#include "archive/clsCab.h"

#include "ExpectedText.h"
#include "archive/ArchiveText.h"
#include "archive/TreeOnDisk.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

using namespace vesk;
using namespace vesk::test;

namespace {

/// Writes down every event, and does in it what a test asks for.
struct Recorder : CabEvents {
    std::string log;
    std::function<void(const std::string& event, bool& cancel)> react;

    void Note(const std::string& event, bool&& cancel = false) { Note(event, cancel); }
    void Note(const std::string& event, bool& cancel) {
        log += event + "|";
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

struct Fixture : Extracting {
    Recorder owner;
    clsCab cab{&owner};

    explicit Fixture(const std::string& bytes) : Extracting("x.cab", bytes) {
        cab.CabName = path;
        cab.DestinationFolder = target;
    }
    /// @return the events, and what was thrown
    std::string Told(void (clsCab::*method)()) {
        owner.log.clear();
        try {
            (cab.*method)();
        } catch (const std::exception& thrown) {
            owner.log += thrown.what();
        }
        return owner.log;
    }
    [[nodiscard]] std::string Found() const { return ListedIn(target); }
};

std::string Three() {
    return CabOf("one.txt=1||sub\\deep\\two.txt=22||three.txt=333").Bytes();
}

} // namespace

TEST_CASE("members are counted, listed and extracted; one named in any letter case alone") {
    Fixture f(Three());
    CHECK(f.cab.FileCount() == 3);
    CHECK(f.Told(&clsCab::GetInfo) == "found >one.txt|found sub\\deep>two.txt|found >three.txt|");
    f.cab.FileToExtract = "none";
    CHECK(f.Told(&clsCab::Extract).empty());
    CHECK_FALSE(FolderExists(f.target));
    f.cab.FileToExtract = "SUB\\Deep\\TWO.txt";
    CHECK(f.Told(&clsCab::Extract) == "before sub\\deep\\two.txt|after two.txt|");
    CHECK(f.Told(&clsCab::GetInfo) == "found sub\\deep>two.txt|");
    CHECK(f.Found() == "sub\\=|sub\\deep\\=|sub\\deep\\two.txt=22");
    f.cab.FileToExtract.clear();
    f.cab.DestinationFolder.clear();
    CHECK(f.Told(&clsCab::Extract) == "before one.txt|after one.txt|before sub\\deep\\two.txt|"
                                      "after two.txt|before three.txt|after three.txt|");
    CHECK(ReadWholeFile(f.folder / "three.txt") == "333");

    Fixture twice(CabOf("a=1|A=2").Bytes());
    twice.cab.FileToExtract = "a";
    CHECK(twice.Told(&clsCab::GetInfo) == "found >a|");
}

TEST_CASE("the list of members as XML") {
    const TestCab cab = CabOf("a&b\\<\xE4>'.txt=12345|\xD0\x96\\\xE4\xB8\xAD.txt=1 "
                              "member1.attributes=0xA0 member1.date=0"); // in UTF-8, of no day
    const std::string xml = Fixture(cab.Bytes()).cab.GetXML();
    CHECK(xml.starts_with("<?xml version=\"1.0\"?><FILES><CABFILE CABFILENAME = '"));
    CheckHolds(xml, "' FILECOUNT = '2'></CABFILE>\r\n<FILE>");
    CheckHolds(xml, "<FULLNAME>a&#38;b\\&#60;&#228;&#62;&#39;.txt</FULLNAME>\r\n"
                    "<NAME>&#60;&#228;&#62;&#39;.txt</NAME>\r\n<DATE>2024-0");
    CheckHolds(xml, ":42</DATE>\r\n<SIZE>5</SIZE>\r\n<PATH>a&#38;b</PATH>\r\n</FILE>\r\n"
                    "<FILE><FULLNAME>&#1046;\\&#20013;.txt</FULLNAME>");
    CHECK(xml.ends_with(
        "<DATE>0000-00-00 "
        "00:00:00</DATE>\r\n<SIZE>1</SIZE>\r\n<PATH>&#1046;</PATH>\r\n</FILE>\r\n</FILES>\r\n"));
}

TEST_CASE("the owner can cancel, throw and restart inside an event") {
    Fixture f(Three());
    f.owner.react = [](const std::string& event, bool& cancel) {
        cancel = event == "before one.txt";
    };
    CHECK(f.Told(&clsCab::Extract) == "before one.txt|before sub\\deep\\two.txt|after two.txt|"
                                      "before three.txt|after three.txt|");
    CHECK_FALSE(FileExists(f / "one.txt"));
    f.owner.react = [](const std::string& event, bool&) {
        if (event == "after one.txt")
            throw std::runtime_error("from the owner");
    };
    CHECK(f.Told(&clsCab::Extract) == "before one.txt|after one.txt|from the owner");
    CHECK(ReadWholeFile(f / "one.txt") == "1");
    int refused = 0;
    f.owner.react = [&](const std::string&, bool&) {
        clsCab other;
        other.CabName = f.cab.CabName;
        refused += FailureIn([&] { other.FileCount(); }).number == ERROR_BUSY;
        refused += FailureIn([&] { f.cab.Extract(); }).number == ERROR_BUSY;
    };
    f.cab.Extract();
    CHECK(refused == 12);
    CHECK(f.cab.FileCount() == 3);
}

TEST_CASE("of equal files those come out that are wanted and can be written") {
    const auto without = [](const std::string& data, bool unwanted, const char* unwritten) {
        TestCab cab = CabOf("a=" + data + "|b=|c=|d=|next=x");
        for (const std::string member : {"member1", "member2", "member3"}) {
            cab.fields[member + ".size"] = data.size();
            cab.fields[member + ".offset"] = 0;
        }
        Fixture f(cab.Bytes());
        CreateFolder(f.target);
        CreateFolder(f / unwritten);
        f.owner.react = [&](const std::string& event, bool& cancel) {
            cancel = unwanted && event == "before a";
        };
        const std::string told = f.Told(&clsCab::Extract);
        CHECK(ReplaceAll(told, "before ", "").size() + std::size_t{5} * 7 ==
              told.size()); // each asked about once
        return ReplaceAll(f.Found(), data, "*");
    };
    const std::string big(300000, 'b');
    CHECK(without("same", true, "b") == "b\\=|c=*|d=*|next=x");
    CHECK(without(big, true, "d") == "b=*|c=*|d\\=|next=x");
    CHECK(without(big, false, "a") == "a\\=|b=*|c=*|d=*|next=x");
}

TEST_CASE("the owner can destroy the cabinet inside an event") {
    const Fixture f(Three());
    for (const std::string last : {"before one.txt", "after one.txt"}) {
        CAPTURE(last);
        Recorder owner;
        auto cab = std::make_unique<clsCab>(&owner);
        cab->CabName = f.cab.CabName;
        cab->DestinationFolder = f.cab.DestinationFolder;
        owner.react = [&](const std::string& event, bool&) {
            if (event == last)
                cab.reset();
        };
        cab->Extract();
        CHECK(owner.log.ends_with(last + "|"));
        CHECK(f.Found() == (last == "after one.txt" ? "one.txt=1" : ""));
    }
}

TEST_CASE("what cannot be read raises the system's number and a fixed text") {
    const TestFolder folder;
    clsCab cab;
    for (const auto& method :
         std::vector<std::function<void()>>{[&] { cab.FileCount(); }, [&] { cab.Extract(); },
                                            [&] { cab.GetInfo(); }, [&] { cab.GetXML(); }})
        CHECK(FailureIn(method).number == 0x800407A4);
    CHECK_THROWS_WITH(cab.FileCount(), "You must set the CabName property before taking any "
                                       "action on the CabFile object.");
    cab.CabName = folder / "none.cab";
    CHECK(FailureIn([&] { cab.Extract(); }).source == "CabFile");
    CHECK(FailureIn([&] { cab.Extract(); }).number == 2);
    CHECK_THROWS_WITH(cab.Extract(), "The system cannot find the file specified.");
    cab.CabName = folder.Write("text.cab", "this is no cabinet, only text of some length");
    CHECK_THROWS_WITH(cab.Extract(), "Invalid data.");
    cab.CabName = folder.Write("a.cab", Three());
    cab.DestinationFolder = folder.Write("file", "stands in the way") + "\\below";
    CHECK(FailureIn([&] { cab.Extract(); }).number != 0);
    cab.DestinationFolder = folder / std::string(300, 'x'); // more than a file system takes
    CHECK(FailureIn([&] { cab.Extract(); }).number != 0);
}

TEST_CASE("what only cabinets can hold: what is told, thrown and left behind") {
    const std::string big(300000, 'b');
    const auto cabinet = [&](const std::string& line) {
        TestCab cab = CabOf(ReplaceAll(line, "*", big));
        // So large that a part of it has been written when the damage is met in unpacking.
        if (cab.fields.contains("deflated"))
            for (std::string& block :
                 cab.folders.at(static_cast<std::size_t>(cab.fields["deflated"])))
                block = "CK" + Deflated(block);
        if (cab.fields.contains("lzx")) // a block that is not compressed is of kind 3
            cab.folders[0][0] = U16(cab.fields["lzx"]) + U16(cab.folders[0][0].size() << 4) +
                                U32(1) + U32(1) + U32(1) + cab.folders[0][0];
        return cab.Bytes();
    };
    CheckLines("cabinets_extracted", [&](const std::string& line) {
        Fixture f(cabinet(line));
        const std::string told = f.Told(&clsCab::Extract);
        const std::string found = ReplaceAll(f.Found(), big, "*");
        const std::string tested = f.Told(&clsCab::Test);
        return told + " <" + found + ">" + (tested == told ? "" : " tested: " + tested);
    });
    Fixture f(CabOf("a=same|a.too=same member1.offset=0").Bytes());
    f.cab.FileToExtract = "a.too";
    f.cab.Extract();
    CHECK(f.Found() == "a.too=same");
}
