#pragma once

#include "source/SourceState.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vesk {

/// One Windows installation source that a scan found.
struct FoundSource {
    std::string rootFolder;     ///< The folder that holds I386, ending in "\".
    std::string productName;    ///< As LAYOUT.INF has it.
    std::string servicePackTag; ///< As LAYOUT.INF has it; may be empty.
};

/// Who follows a scan. Any of its methods may stop the scan.
class DriveScanEvents {
public:
    virtual ~DriveScanEvents() = default;

    /// @param folder the folder searched now, ending in "\"
    virtual void OnFolder(const std::string& folder) = 0;

    /// A Windows source was found.
    virtual void OnFound(const FoundSource& found) = 0;

    /// Called after each entry of a folder: the place to let events of the user interface run.
    virtual void OnEntryDone() = 0;
};

/// The roots to search, from the system's bit mask of drives: "C:\" and so on. The floppy drives
/// A: and B: are left out.
std::vector<std::string> SearchableDrives(std::uint32_t driveMask);

/// Walks drives for Windows installation sources.
class clsDriveScan {
public:
    /// Both must outlive the scan.
    /// @param source its valid flag is raised by everything found, whether the user picks it or not
    clsDriveScan(DriveScanEvents& events, SourceState& source) : events_(events), source_(source) {}

    /// Searches the given roots (each ending in "\") one after the other, until all are done or the
    /// scan is stopped. Folders that cannot be read are passed over.
    void Run(const std::vector<std::string>& roots);

    /// Makes a running scan end at its next entry.
    void Stop() { stopped_ = true; }

    /// Whether Stop was called.
    [[nodiscard]] bool IsStopped() const { return stopped_; }

private:
    struct Level;
    void SearchDrive(const std::string& root);
    void LookAtEntry(std::vector<Level>& levels);
    void GoOn(Level& level);
    void ReportFound(const std::string& i386Folder);

    DriveScanEvents& events_;
    SourceState& source_;
    bool stopped_ = false;
};

} // namespace vesk
