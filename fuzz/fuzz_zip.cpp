#include "Require.h"

#include "../tests/archive/MemorySource.h"
#include "archive/clsZipMemberReader.h"
#include "archive/modMemberName.h"
#include "archive/modZipTexts.h"
#include "base/modUtf8.h"

#include <algorithm>

using namespace vesk;

namespace {

using Bytes = std::span<const std::byte>;

/// The definition, bit by bit: nothing of the code that is tested.
std::uint32_t PlainCrc(Bytes bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const std::byte byte : bytes) {
        crc ^= std::to_integer<std::uint32_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

/// What is handed out is what the entry promises, and the same whole and in pieces.
void CheckContent(clsZipMemberReader& reader, const ZipMember& member) {
    std::string whole = "refused";
    std::string pieces = "refused";
    try {
        const Bytes content = reader.Read(member);
        Require(content.size() == member.size ||
                (member.otherSizes && content.size() == member.otherSizes->plain));
        Require(PlainCrc(content) == member.crc);
        whole.assign(reinterpret_cast<const char*>(content.data()), content.size());
    } catch (const ArchiveProblem&) { // an ordinary answer
    }
    try {
        std::string content;
        reader.Stream(member, [&](Bytes piece, std::uint64_t packedDone) {
            Require(packedDone <=
                    std::max(member.packedSize, member.otherSizes.value_or(ZipSizes()).packed));
            content.append(reinterpret_cast<const char*>(piece.data()), piece.size());
        });
        pieces = content;
    } catch (const ArchiveProblem&) {
    }
    Require(whole == pieces);
}

/// A path lies below the folder, part by part.
void CheckName(const ZipMember& member) {
    const std::wstring folder = L"\\\\?\\C:\\tree";
    const auto name = FromUtf8(member.name);
    const auto path = name ? PathInside(folder, *name) : std::nullopt;
    if (!path)
        return;
    Require(path->starts_with(folder + L"\\"));
    const std::wstring rest = path->substr(folder.size()) + L"\\";
    Require(rest.find_first_of(L"/:*?\"<>|") == rest.npos);
    Require(std::ranges::none_of(rest, [](wchar_t c) { return c < 0x20; }));
    for (const wchar_t* hostile : {L"\\\\", L".\\", L" \\", L"\\nul\\", L"\\CON."})
        Require(rest.find(hostile) == rest.npos);
}

} // namespace

/// A whole extraction without a disk: every member that is not refused is read and listed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::uint64_t kLargest = 1 << 20; // more would only make the fuzzer slow
    test::MemorySource archive({reinterpret_cast<const char*>(data), size});
    try {
        clsZipDirectory directory(archive);
        clsZipMemberReader reader(archive, directory,
                                  [](bool) { return std::optional<std::string>("pass"); });
        ZipTotals totals;
        ListingHeading();
        for (std::size_t number = 0; number < directory.Count(); ++number) {
            const ZipMember member = directory.Member(number);
            totals.Add(member);
            Require(ListingLine(member, member.name).size() >= member.name.size());
            CheckName(member);
            if (member.refusal.empty() && !member.IsFolder() && member.size <= kLargest)
                CheckContent(reader, member);
        }
        Require(directory.Count() != 0 || directory.Problem().empty());
        Summary(ZipVersion(), totals);
    } catch (const ArchiveProblem&) { // an ordinary answer
    }
    return 0;
}
