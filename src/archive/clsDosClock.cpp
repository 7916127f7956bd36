#include "archive/clsDosClock.h"

namespace vesk {

const TIME_ZONE_INFORMATION& clsDosClock::ZoneOf(WORD year) {
    if (year == year_)
        return zone_;
    year_ = year;
    // Windows XP knows today's rules only.
    using ForYear = BOOL(WINAPI*)(USHORT, void*, TIME_ZONE_INFORMATION*);
    const HMODULE kernel = GetModuleHandleA("kernel32.dll");
    const auto forYear = reinterpret_cast<ForYear>(
        reinterpret_cast<void*>(GetProcAddress(kernel, "GetTimeZoneInformationForYear")));
    if (forYear == nullptr || forYear(year, nullptr, &zone_) == FALSE)
        GetTimeZoneInformation(&zone_);
    return zone_;
}

std::optional<FILETIME> clsDosClock::FileTimeOf(WORD dosDate, WORD dosTime) {
    FILETIME stored{};
    SYSTEMTIME local{};
    SYSTEMTIME parts{};
    FILETIME result{};
    if (DosDateTimeToFileTime(dosDate, dosTime, &stored) == 0 ||
        FileTimeToSystemTime(&stored, &local) == 0)
        return std::nullopt;
    TIME_ZONE_INFORMATION zone = ZoneOf(local.wYear);
    if (TzSpecificLocalTimeToSystemTime(&zone, &local, &parts) == 0 ||
        SystemTimeToFileTime(&parts, &result) == 0)
        return std::nullopt;
    return result;
}

} // namespace vesk
