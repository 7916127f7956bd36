#pragma once

#include <windows.h>

#include <optional>

namespace vesk {

/// Turns local times as archives store them into the file system's, by the rules that hold for the
/// day stored: whether summer time is on today does not matter.
class clsDosClock {
public:
    /// @param error why the system cannot convert it; left alone for a day that does not exist
    /// @return nothing for a day or time that does not exist, and when the system cannot convert it
    std::optional<FILETIME> FileTimeOf(WORD dosDate, WORD dosTime, DWORD& error);

private:
    bool ReadZoneOf(WORD year);

    TIME_ZONE_INFORMATION zone_{};
    WORD year_ = 0; ///< The one that zone_ is for; 0 for none.
};

} // namespace vesk
