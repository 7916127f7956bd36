#include "archive/modMemberName.h"
#include "archive/modZipMember.h"
#include "archive/modZipTexts.h"

#include <cstdlib>

using namespace vesk;

/// A whole extraction without a disk: every member that is not refused is read and listed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::uint64_t kLargest = 1 << 20; // more would only make the fuzzer slow
    const auto archive = std::as_bytes(std::span(data, size));
    try {
        const ZipDirectory directory = ReadZipDirectory(archive);
        ZipMemberReader reader(archive,
                               [](const ZipMember&) { return std::optional<std::string>("pass"); });
        ZipTotals totals;
        for (const ZipMember& member : directory.members) {
            totals.Add(member);
            if (ListingLine(member, member.name).size() < member.name.size())
                std::abort();
            if (!member.refusal.empty() || member.IsFolder() || member.size > kLargest)
                continue;
            PathInside("C:\\tree", member.name);
            try {
                if (reader.Read(member).size() != member.size)
                    std::abort();
            } catch (const ZipProblem&) { // an ordinary answer
            }
        }
        Summary(ZipVersion(), totals);
    } catch (const ZipProblem&) { // so is this
    }
    return 0;
}
