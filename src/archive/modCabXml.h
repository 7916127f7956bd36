#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vesk {

/// A date and time of the calendar; all zero when a cabinet holds none that exists.
struct CalendarTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;

    bool operator==(const CalendarTime&) const = default;
};

/// One member as the cabinet's directory describes it.
struct CabMember {
    std::string fullName;  ///< As it stands in the cabinet, folder included.
    std::string fileName;  ///< What follows the last backslash of fullName.
    std::string folder;    ///< What precedes it; empty when there is none.
    std::wstring wideName; ///< fullName without a loss.
    std::int32_t size = 0; ///< Bytes when extracted, as the cabinet claims.
    CalendarTime time;     ///< Local time.
};

/// The member list as an XML document in ASCII: what is not ASCII becomes a character reference.
std::string CabXml(const std::string& cabName, const std::vector<CabMember>& members);

} // namespace vesk
