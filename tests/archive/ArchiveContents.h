#pragma once

#include "archive/MemorySource.h"
#include "archive/clsZipMemberReader.h"
#include "archive/modCabDirectory.h"
#include "archive/modCabImage.h"
#include "archive/modCabJudge.h"
#include "archive/modCabUnpack.h"
#include "archive/modMemberName.h"
#include "base/Failure.h"
#include "base/modUtf8.h"

#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

/// Whole extractions without a disk, for whatever bytes: tests and fuzzers ask for them. The
/// sanitizers watch; what breaks a promise throws a std::logic_error.
namespace vesk::test {

using Contents = std::map<std::string, std::string>; ///< By members' names.

inline void Promise(bool kept) {
    if (!kept)
        throw std::logic_error("a promise is broken");
}

/// The definition, bit by bit: nothing of the code that is tested.
inline std::uint32_t PlainCrc(const std::string& text) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char c : text) {
        crc ^= static_cast<std::uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

/// A path that is handed out lies below the folder, part by part.
inline void CheckName(const std::string& name) {
    const auto wide = FromUtf8(name);
    const auto path = wide ? PathInside(L"C:\\tree", *wide) : std::nullopt;
    if (!path)
        return;
    const std::wstring rest = path->substr(std::min<std::size_t>(7, path->size())) + L"\\";
    Promise(path->starts_with(L"C:\\tree\\") && rest.find_first_of(L"/:*?\"<>|") == rest.npos);
    for (const wchar_t* hostile : {L"\\\\", L".\\", L" \\", L"\\nul\\", L"\\CON."})
        Promise(rest.find(hostile) == rest.npos);
}

/// What is handed out is what the entry promises, and the same whole and in pieces.
inline std::optional<std::string> ZipContent(clsZipMemberReader& reader, const ZipMember& member) {
    const auto append = [](std::string& text, std::span<const std::byte> bytes) {
        text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    };
    std::optional<std::string> whole(""), pieces(whole);
    try {
        append(*whole, reader.Read(member));
        Promise(PlainCrc(*whole) == member.crc);
        Promise(whole->size() == member.size || member.otherSizes);
    } catch (const ArchiveProblem&) { // an ordinary answer
        whole.reset();
    }
    try {
        reader.Stream(member, [&](std::span<const std::byte> piece, std::uint64_t packedDone) {
            Promise(packedDone <= member.packedSize || member.otherSizes);
            append(*pieces, piece);
        });
    } catch (const ArchiveProblem&) {
        pieces.reset();
    }
    Promise(pieces == whole);
    return whole;
}

inline Contents ZipContents(const std::string& archive) {
    constexpr std::uint64_t kLargest = 1 << 20; // more would only be slow
    Contents contents;
    MemorySource source(archive);
    std::optional<clsZipDirectory> directory;
    try {
        directory.emplace(source);
    } catch (const ArchiveProblem&) {
        return contents;
    }
    Promise(directory->Count() != 0 || directory->Problem().empty());
    clsZipMemberReader reader(source, *directory,
                              [](bool) { return std::optional<std::string>("pass"); });
    for (std::size_t number = 0; number < directory->Count(); ++number) {
        const ZipMember member = directory->Member(number);
        CheckName(member.name);
        if (!member.refusal.empty() || member.IsFolder() || member.size > kLargest)
            continue;
        if (const auto text = ZipContent(reader, member))
            contents[member.name] = *text;
    }
    return contents;
}

/// Takes the members that are whole.
struct Collector : CabSink {
    std::vector<std::string> texts;
    std::set<std::size_t> whole;
    std::size_t at = 0;

    bool Begin(std::size_t place) override {
        at = place;
        return true;
    }
    void Write(std::span<const std::byte> bytes) override {
        texts[at].append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    void End() override { whole.insert(at); }
};

/// What the system's library would be given is judged again.
inline Contents CabContents(const std::string& archive) {
    Contents contents;
    MemorySource source(archive);
    ByteWindow cabinet(source);
    CabDirectory directory;
    try {
        directory = ReadCabDirectory(cabinet);
    } catch (const Failure&) {
        return contents;
    }
    JudgeCabData(cabinet, directory, [] {});
    const std::vector<std::size_t> order = JudgeCabEntries(directory);
    for (std::size_t index = 0; index < directory.folders.size(); ++index) {
        std::vector<std::size_t> entries;
        for (const std::size_t number : order) {
            const CabEntry& entry = directory.entries[number];
            if (entry.folder == index && entry.size != 0 && entry.refusal.empty())
                entries.push_back(number);
        }
        if (entries.empty())
            continue;
        const CabFolder& folder = directory.folders[index];
        MemorySource image(CabFolderImage(directory, folder, entries));
        ByteWindow imageWindow(image);
        Promise(ReadCabDirectory(imageWindow).entries.size() == entries.size());
        Collector sink;
        sink.texts.resize(entries.size());
        if (IsUnpackedHere(folder))
            UnpackCabFolder(cabinet, directory, folder, entries, sink);
        for (const std::size_t place : sink.whole) {
            const CabEntry& entry = directory.entries[entries[place]];
            CheckName(entry.name);
            Promise(sink.texts[place].size() == entry.size);
            contents[entry.name] = sink.texts[place];
        }
    }
    return contents;
}

} // namespace vesk::test
