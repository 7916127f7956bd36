#pragma once

#include "Require.h"
#include "archive/clsZipMemberReader.h"
#include "archive/modCabDirectory.h"
#include "archive/modCabImage.h"
#include "archive/modCabJudge.h"
#include "archive/modCabUnpack.h"
#include "archive/modMemberName.h"
#include "base/Failure.h"
#include "base/modUtf8.h"

#include <zlib.h>

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Whole extractions without a disk, for whatever bytes: tests and fuzzers ask for them. The
/// sanitizers watch, and what is required of every archive.
namespace vesk::test {

/// An archive in memory, as the program would find it in a file.
class MemorySource : public ByteSource {
public:
    explicit MemorySource(std::string bytes) : bytes_(std::move(bytes)) {}

    [[nodiscard]] std::uint64_t Size() const override { return bytes_.size(); }
    std::size_t Read(std::uint64_t at, std::span<std::byte> to) override {
        const auto from = static_cast<std::size_t>(std::min(at, Size()));
        return bytes_.copy(reinterpret_cast<char*>(to.data()), to.size(), from);
    }

private:
    std::string bytes_;
};

using Contents = std::map<std::string, std::string>; ///< By members' names.

/// What came out of an archive.
struct Reading {
    struct Member {
        std::string name;
        std::optional<std::string> text;
        std::string reason = "not unpacked"; ///< Why there is no text.
    };
    std::string problem; ///< Of the archive as a whole.
    std::vector<Member> members;
    std::string asked;      ///< For a password: "?", and "!" when the last one was wrong.
    std::size_t blocks = 0; ///< Of a cabinet, that were walked through.

    [[nodiscard]] Contents Whole() const {
        Contents contents;
        for (const Member& member : members)
            if (member.text)
                contents[member.name] = *member.text;
        return contents;
    }
    /// Whether it says of anything that it did not come out.
    [[nodiscard]] bool Tells() const {
        return !problem.empty() || std::ranges::any_of(members, [](const Member& member) {
            return !member.text && !member.reason.empty();
        });
    }
    /// "problem: name=text|name!reason|asked", without what is not there.
    [[nodiscard]] std::string Told() const {
        std::string told = problem.empty() ? "" : problem + ": ";
        for (const Member& member : members)
            told += (&member == members.data() ? "" : "|") + member.name +
                    (member.text ? "=" + *member.text : "!" + member.reason);
        return told + (asked.empty() ? "" : "|" + asked);
    }
};

/// A path that is handed out lies below the folder, part by part.
template <class Char>
void CheckPath(const std::basic_string<Char>& path) {
    const auto text = [](std::string_view ascii) {
        return std::basic_string<Char>(ascii.begin(), ascii.end());
    };
    Require(path.starts_with(text("C:\\tree\\")));
    const auto rest = path.substr(7) + text("\\"); // each part stands between two backslashes
    Require(rest.find_first_of(text("/:*?\"<>|")) == rest.npos);
    for (const char* hostile : {"\\\\", ".\\", " \\", "\\nul\\", "\\CON.", "\\CON\\"})
        Require(rest.find(text(hostile)) == rest.npos);
}

inline void CheckName(const std::string& name) {
    if (const auto path = PathInside("C:\\tree", name))
        CheckPath(*path);
    const auto wide = FromUtf8(name);
    const auto path = wide ? PathInside(L"C:\\tree", *wide) : std::nullopt;
    if (path)
        CheckPath(*path);
    Require(!path || !NamesFolderItself(*wide));
}

inline std::string TextOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// By another implementation than the reader's own.
inline std::uint32_t CrcByZlib(const std::string& text) {
    return static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(text.data()), static_cast<uInt>(text.size())));
}

/// What is handed out is what the entry promises.
inline std::string ZipContent(clsZipMemberReader& reader, const ZipMember& member, bool inPieces) {
    constexpr std::uint64_t kLargest = 1 << 20; // more would only be slow
    if (!member.refusal.empty() || member.IsFolder() || member.size > kLargest)
        throw ArchiveProblem(member.refusal.empty() ? "folder" : member.refusal);
    std::string text;
    if (inPieces)
        reader.Stream(member, [&](std::span<const std::byte> piece, std::uint64_t packedDone) {
            Require(packedDone <= member.packedSize || member.otherSizes);
            text += TextOf(piece);
        });
    else
        text = TextOf(reader.Read(member));
    Require(CrcByZlib(text) == member.crc);
    Require(text.size() == member.size || member.otherSizes);
    return text;
}

/// @param answers to questions for a password; then there is none
inline Reading ReadZip(const std::string& archive, const std::vector<std::string>& answers,
                       bool inPieces) {
    Reading reading;
    MemorySource source(archive);
    std::optional<clsZipDirectory> directory;
    try {
        directory.emplace(source);
    } catch (const ArchiveProblem& problem) {
        reading.problem = problem.what();
        return reading;
    }
    reading.problem = directory->Problem();
    Require(directory->Count() != 0 || reading.problem.empty());
    clsZipMemberReader reader(source, *directory, [&](bool wrongBefore) {
        const std::size_t number = reading.asked.size();
        reading.asked += wrongBefore ? '!' : '?';
        return number < answers.size() ? std::optional(answers[number]) : std::nullopt;
    });
    for (std::size_t number = 0; number < directory->Count(); ++number) {
        const ZipMember member = directory->Member(number);
        CheckName(member.name);
        Reading::Member& read = reading.members.emplace_back(Reading::Member{member.name, {}});
        try {
            read.text = ZipContent(reader, member, inPieces);
        } catch (const ArchiveProblem& problem) { // an ordinary answer
            read.reason = problem.what();
        }
    }
    return reading;
}

/// What comes in pieces is what comes whole. It may be less: zlib refuses two codes of lengths that
/// nothing writes, and libdeflate does not.
inline Reading ReadZipTwice(const std::string& archive) {
    static const std::vector<std::string> kAnswers(99, "pass");
    Reading whole = ReadZip(archive, kAnswers, false);
    const Reading pieces = ReadZip(archive, kAnswers, true);
    Require(pieces.members.size() == whole.members.size());
    for (std::size_t i = 0; i < whole.members.size(); ++i)
        Require(!pieces.members[i].text || pieces.members[i].text == whole.members[i].text);
    return whole;
}

inline std::string ZipTold(const std::string& archive,
                           const std::vector<std::string>& answers = {}) {
    const std::string whole = ReadZip(archive, answers, false).Told();
    const std::string inPieces = ReadZip(archive, answers, true).Told();
    return whole == inPieces ? whole : whole + " BUT IN PIECES " + inPieces;
}

/// Takes the members that are whole.
struct Collector : CabSink {
    std::vector<Reading::Member>& members;
    const std::vector<std::size_t>& numbers; ///< Of the members that are taken.
    std::string text = {};
    std::size_t at = 0;

    Collector(std::vector<Reading::Member>& all, const std::vector<std::size_t>& wanted)
        : members(all), numbers(wanted) {}
    bool Begin(std::size_t place) override {
        at = numbers[place];
        text.clear();
        return members[at].name != "pass me over";
    }
    void Write(std::span<const std::byte> bytes) override { text += TextOf(bytes); }
    void End() override { members[at].text = text; }
};

/// What the system's library would be given is one sound folder under headers of our own.
inline void CheckImage(const std::string& cabinet, const CabDirectory& directory,
                       const CabFolder& folder, const std::vector<std::size_t>& entries) {
    MemorySource image(CabFolderImage(directory, folder, entries) +
                       cabinet.substr(folder.dataAt, static_cast<std::size_t>(folder.goodPacked)));
    clsByteWindow window(image);
    CabDirectory again = ReadCabDirectory(window);
    JudgeCabData(window, again, [] {});
    JudgeCabEntries(again);
    Require(again.folders.size() == 1 && again.entries.size() == entries.size());
    Require(again.folders[0].blocks == folder.goodBlocks && again.folders[0].fault.empty());
    Require(again.folders[0].goodUnpacked == folder.goodUnpacked);
    for (std::size_t i = 0; i < entries.size(); ++i)
        Require(again.entries[i].refusal.empty() && again.entries[i].name == std::to_string(i));
}

inline Reading ReadCab(const std::string& archive) {
    Reading reading;
    MemorySource source(archive);
    clsByteWindow cabinet(source);
    CabDirectory directory;
    try {
        directory = ReadCabDirectory(cabinet);
    } catch (const Failure& failure) {
        reading.problem = failure.reason;
        return reading;
    }
    JudgeCabData(cabinet, directory, [&] { ++reading.blocks; });
    const std::vector<std::size_t> order = JudgeCabEntries(directory);
    std::map<std::uint16_t, std::vector<std::size_t>> byFolder;
    for (const CabEntry& entry : directory.entries) {
        CheckName(entry.name);
        reading.members.push_back({entry.name, {}});
        if (!entry.refusal.empty())
            reading.members.back().reason = entry.refusal;
        else if (entry.size == 0)
            reading.members.back().text = "";
    }
    for (const std::size_t number : order)
        if (const CabEntry& entry = directory.entries[number];
            entry.size != 0 && entry.refusal.empty() && !entry.twin)
            byFolder[entry.folder].push_back(number);
    for (const auto& [index, entries] : byFolder) {
        const CabFolder& folder = directory.folders[index];
        CheckImage(archive, directory, folder, entries);
        Collector sink(reading.members, entries);
        if (IsUnpackedHere(folder))
            UnpackCabFolder(cabinet, directory, folder, entries, sink);
    }
    for (std::size_t i = 0; i < reading.members.size(); ++i) {
        const CabEntry& entry = directory.entries[i];
        if (entry.twin)
            reading.members[i].text = reading.members[*entry.twin].text;
        Require(!reading.members[i].text || reading.members[i].text->size() == entry.size);
    }
    return reading;
}

} // namespace vesk::test
