#include "catalogue/clsProgramArchives.h"

#include "archive/clsCRC.h"
#include "archive/modArchiveName.h"
#include "base/modSha256.h"

#include <windows.h>

#include <optional>
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
    if (stamp && known != checksums_.end() && known->second.stamp == *stamp &&
        known->second.sha256 == ExpectedSha256(name)) {
        facts.crc = known->second.crc;
        facts.sha256Fault = known->second.sha256Fault;
    }
    return facts;
}

/// From the list as it is now: the editor writes it while archives are shown.
std::string clsProgramArchives::ExpectedSha256(const std::string& name) const {
    const auto stamp = StampOf(kSha256FileName);
    if (stamp != listStamp_)
        list_ = stamp ? clsSha256List(programPath_) : clsSha256List();
    listStamp_ = stamp;
    return list_.Expected(name);
}

ArchiveFacts clsProgramArchives::Facts(const std::string& name,
                                       const std::function<void()>& meanwhile) {
    ArchiveFacts facts = Known(name);
    const auto stamp = facts.isThere && !facts.crc ? StampOf(name) : std::nullopt;
    if (stamp) {
        const std::string path = programPath_ + name;
        const std::string expected = ExpectedSha256(name);
        facts.crc = clsCRC().CalculateFile(path, meanwhile);
        facts.sha256Fault = facts.crc->empty() ? "" : Sha256Fault(path, expected, meanwhile);
        checksums_[name] = {*stamp, *facts.crc, expected, facts.sha256Fault};
    }
    return facts;
}

} // namespace vesk
