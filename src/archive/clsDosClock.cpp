#include "archive/clsDosClock.h"

namespace vesk {

bool clsDosClock::ReadZoneOf(WORD year) {
    if (year == year_)
        return true;
    // Windows XP knows today's rules only.
    using ForYear = BOOL(WINAPI*)(USHORT, void*, TIME_ZONE_INFORMATION*);
    const HMODULE kernel = GetModuleHandleA("kernel32.dll");
    const auto forYear = reinterpret_cast<ForYear>(
        reinterpret_cast<void*>(GetProcAddress(kernel, "GetTimeZoneInformationForYear")));
    if ((forYear == nullptr || forYear(year, nullptr, &zone_) == FALSE) &&
        GetTimeZoneInformation(&zone_) == TIME_ZONE_ID_INVALID)
        return false;
    year_ = year;
    return true;
}

std::optional<FILETIME> clsDosClock::FileTimeOf(WORD dosDate, WORD dosTime, DWORD& error) {
    FILETIME stored{};
    SYSTEMTIME local{};
    SYSTEMTIME parts{};
    FILETIME result{};
    if (DosDateTimeToFileTime(dosDate, dosTime, &stored) == 0)
        return std::nullopt;
    if (FileTimeToSystemTime(&stored, &local) != 0 && ReadZoneOf(local.wYear) &&
        TzSpecificLocalTimeToSystemTime(&zone_, &local, &parts) != 0 &&
        SystemTimeToFileTime(&parts, &result) != 0)
        return result;
    error = GetLastError();
    return std::nullopt;
}

} // namespace vesk
