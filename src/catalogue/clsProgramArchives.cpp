#include "catalogue/clsProgramArchives.h"

#include "archive/clsCRC.h"
#include "archive/modArchive.h"

#include <windows.h>

#include <utility>

namespace vesk {

namespace {

std::uint64_t Joined(DWORD high, DWORD low) {
    return (std::uint64_t{high} << 32) | low;
}

} // namespace

clsProgramArchives::clsProgramArchives(std::string programPath)
    : programPath_(std::move(programPath)) {}

std::optional<clsProgramArchives::Stamp>
clsProgramArchives::StampOf(const std::string& name) const {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExA((programPath_ + name).c_str(), GetFileExInfoStandard, &data) == 0 ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return std::nullopt;
    return Stamp{Joined(data.nFileSizeHigh, data.nFileSizeLow),
                 Joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime)};
}

ArchiveFacts clsProgramArchives::Known(const std::string& name) const {
    ArchiveFacts facts;
    facts.plainName = IsPlainArchiveName(name);
    const auto stamp = facts.plainName ? StampOf(name) : std::nullopt;
    facts.isThere = stamp.has_value();
    const auto known = checksums_.find(name);
    if (stamp && known != checksums_.end() && known->second.stamp == *stamp)
        facts.crc = known->second.crc;
    return facts;
}

ArchiveFacts clsProgramArchives::Facts(const std::string& name) {
    ArchiveFacts facts = Known(name);
    const auto stamp = facts.isThere && !facts.crc ? StampOf(name) : std::nullopt;
    if (stamp) {
        facts.crc = clsCRC().CalculateFile(programPath_ + name);
        checksums_[name] = {*stamp, *facts.crc};
    }
    return facts;
}

} // namespace vesk
