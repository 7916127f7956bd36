#pragma once

#include <windows.h>

#include <optional>

namespace vesk {

/// Turns local times as archives store them into the file system's, by the rules that hold for the
/// day stored: whether summer time is on today does not matter.
class clsDosClock {
public:
    /// @return nothing for a day or time that does not exist
    std::optional<FILETIME> FileTimeOf(WORD dosDate, WORD dosTime);

private:
    const TIME_ZONE_INFORMATION& ZoneOf(WORD year);

    TIME_ZONE_INFORMATION zone_{};
    WORD year_ = 0; ///< The one that zone_ is for.
};

} // namespace vesk
