#include "TestFolder.h"
#include "archive/CabBuilder.h"
#include "archive/modArchive.h"
#include "base/UniqueHandle.h"
#include "base/modText.h"
#include "base/modUtf8.h"

#include <map>

using namespace vesk;
using namespace vesk::test;

namespace {

using Names = std::vector<std::string>;
using Files = std::map<std::wstring, std::string>;

/// Every part in every form, "%" standing for the part and "#" for a number of each name's own.
Names Spread(const Names& parts, const Names& forms) {
    Names names;
    for (const std::string& part : parts)
        for (const std::string& form : forms)
            names.push_back(
                ReplaceAll(ReplaceAll(form, "#", std::to_string(names.size())), "%", part));
    return names;
}

/// Parts that are plain names, in UTF-8.
const Names kPlain =
    Split("a/A b/.hidden/a..b/.a.b./com10.txt/COM/nul1/console/conin/lpt/auxiliary/prn_/xcon/com-1/"
          "nul-/~1/[x]/{}/%20/a,b;c/!/@/$/&/(1)/+/=/^/`/_/-/'/\xC3\xA4/\xC3\x9F/u\xCC\x88/"
          "\xE4\xB8\xAD/\xF0\x9F\x98\x80/\xD0\x96/\xCE\xA9/\xE2\x82\xAC/\xD7\x90/\xEF\xBC\xA1/"
          "\xEF\xBC\x9A/a\xEF\xBC\x9A"
          "b/\xEF\xBC\x8A/com\xEF\xBC\x91/a\xE2\x88\x96"
          "b/\xE2\x81\x84/d\xEF\xBC\x8E/\xEF\xBD\x9C/\xEF\xBC\x9C/"
          "com\xC2\xBC/a\xC2\xA0/\xE3\x81\x82.txt/con\xC3\xA9/conout$x/\xE2\x80\x8B/" +
              std::string(200, 'l'),
          '/');
const Names kPlainForms = {"#/%z", "#/./%x/f", "./#//%_.txt", "#/d\\%y", "#\\sub/.\\%q//f.bin"};

/// Parts that no plain file or folder has, or that lead elsewhere.
const Names kBad =
    Split("../C:/c:x/a:b/:/nul/NUL.txt/con/CoN.a.b/aux .x/prn/lpt1/LPT9.x/com0/com\xC2\xB2/"
          "com\xC2\xB9.log/lpt\xC2\xB3/conin$/CONOUT$.a/com1 .x/dot./dots../blank /.../. / /a?b/*/"
          "st*r/</>/a|b/\"/\x01/a\x1F/a\nb/\t/\r/nul ./..\xE2\x88\x96up/..\xEF\xBC\x8Fup/"
          "\xEF\xBC\x8E\xEF\xBC\x8E/aux/com9.tar.gz/con:/a*b/a\"b/a\x02/a. /.. /" +
              std::string(256, 'l'),
          '/');
const Names kBadForms = {"%", "#/%", "%/#", "#\\%\\f", "./%", "#//.//%"};

std::string Zip(const Names& names) {
    std::vector<TestMember> members;
    for (std::size_t i = 0; i < names.size(); ++i) {
        members.push_back(TestMember::Stored(names[i], std::to_string(i)));
        members.back().flags = 0x800;
    }
    return MakeZip(members);
}

std::string Cab(const Names& names) {
    std::vector<std::pair<std::string, std::string>> files;
    for (std::size_t i = 0; i < names.size(); ++i)
        files.emplace_back(names[i], std::to_string(i));
    TestCab cab = TestCab::Of(files);
    for (TestCabMember& member : cab.members)
        member.attributes = 0xA0;
    return cab.Bytes();
}

std::string ContentOf(const std::wstring& path) {
    const FileHandle file(
        CreateFileW(path.c_str(), GENERIC_READ, 7, nullptr, OPEN_EXISTING, 0, nullptr));
    std::string text(10, '\0');
    DWORD size = 0;
    if (!file || ReadFile(file.Get(), text.data(), 10, &size, nullptr) == 0)
        return "cannot be read";
    return text.substr(0, size);
}

/// Every file below the folder and what it holds.
Files FilesBelow(const std::wstring& folder) {
    Files files;
    std::vector<std::wstring> folders{L""};
    for (std::size_t i = 0; i < folders.size(); ++i)
        ForEachEntry(folder + folders[i], [&, below = folders[i]](const FolderEntry& entry) {
            const std::wstring path = below + L"\\" + entry.name;
            if (entry.IsFolder())
                folders.push_back(path);
            else
                files[path] = ContentOf(folder + path);
        });
    return files;
}

/// What the names mean, by their forms.
Files Expected(const Names& names) {
    Files files;
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::string plain = "/" + ReplaceAll(names[i], "\\", "/");
        for (const char* nothing : {"//", "/./"})
            plain = ReplaceAll(plain, nothing, "/");
        files[*FromUtf8(ReplaceAll(plain, "/", "\\"))] = std::to_string(i);
    }
    return files;
}

} // namespace

TEST_CASE("valid names come out as themselves and hostile ones not at all, in both kinds") {
    const Names plain = Spread(kPlain, kPlainForms);
    Names bad = Spread(kBad, kBadForms);
    for (const char* absolute : {"/a", "\\a", "//s/x", "\\\\s\\x", "/", "\\\\?\\C:\\x"})
        bad.push_back(absolute);
    REQUIRE(plain.size() == 295);
    REQUIRE(bad.size() > 300);
    Names all = plain;
    all.insert(all.end(), bad.begin(), bad.end());
    const bool western = GetACP() == 1252; // elsewhere other characters look like strokes
    for (const char* extension : {".zip", ".cab"}) {
        CAPTURE(extension);
        Names names = all;
        if (extension[1] == 'c')
            for (std::string& name : names) // a cabinet's names are shorter
                if (name.size() > 255)
                    name = "..";
        const TestFolder folder;
        const std::string path = folder.Write(std::string("x") + extension,
                                              extension[1] == 'c' ? Cab(names) : Zip(names));
        const ExtractionOutcome outcome = ExtractArchive(path, folder / "out", {});
        std::string differing; // told rather than two maps
        const auto files = FilesBelow(LongPath(folder / "out"));
        const auto expected = Expected(plain);
        for (const auto& [name, text] : files)
            if (!expected.contains(name) || expected.at(name) != text)
                differing += Narrowed(name) + "=" + text + " ";
        for (const auto& [name, text] : expected)
            if (!files.contains(name))
                differing += "no " + Narrowed(name) + " ";
        CHECK(differing == "");
        CHECK((outcome.failures.size() == bad.size() || !western));
        CHECK(InspectArchive(path) == outcome.failures);
        CHECK(FilesBelow(Widen(folder.Path())).size() == plain.size() + 1);
    }
}
