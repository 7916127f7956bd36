#pragma once

#include "catalogue/clsSha256List.h"
#include "catalogue/modArchiveState.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace vesk {

/// The archives in the program folder. A checksum is computed once for as long as the file stays
/// the same, by its size and its time.
class clsProgramArchives {
public:
    /// @param programPath ends in "\"
    explicit clsProgramArchives(std::string programPath);

    /// What is known of an archive at once: without a checksum when that would have to be computed.
    /// @param name file name as an entry has it
    [[nodiscard]] ArchiveFacts Known(const std::string& name) const;

    /// All of it. Reads the whole file the first time.
    /// @param meanwhile called every few megabytes of it, so that a window stays alive
    [[nodiscard]] ArchiveFacts Facts(const std::string& name,
                                     const std::function<void()>& meanwhile = {});

private:
    /// What distinguishes one content of a file from the next.
    struct Stamp {
        std::uint64_t size = 0;
        std::uint64_t written = 0;

        bool operator==(const Stamp&) const = default;
    };
    struct Checksum {
        Stamp stamp;
        std::string crc;
        std::string sha256; ///< The one that was asked for; empty for none.
        std::string sha256Fault;
    };

    [[nodiscard]] std::optional<Stamp> StampOf(const std::string& name) const;
    [[nodiscard]] std::string ExpectedSha256(const std::string& name) const;

    std::string programPath_;
    mutable std::optional<Stamp> listStamp_; ///< Of the list that was read last.
    mutable clsSha256List list_;
    std::map<std::string, Checksum> checksums_;
};

} // namespace vesk
