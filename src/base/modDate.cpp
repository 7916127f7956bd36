#include "base/modDate.h"

#include <windows.h>

#include <array>

namespace vesk {

namespace {

using Formatter = int(WINAPI*)(LCID, DWORD, const SYSTEMTIME*, LPCSTR, LPSTR, int);

std::string Formatted(Formatter format, DWORD flags, const SYSTEMTIME& time) {
    std::array<char, 128> buffer{};
    format(LOCALE_USER_DEFAULT, flags, &time, nullptr, buffer.data(),
           static_cast<int>(buffer.size()));
    return buffer.data();
}

} // namespace

std::string GeneralDate() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return Formatted(GetDateFormatA, DATE_SHORTDATE, now) + " " + Formatted(GetTimeFormatA, 0, now);
}

} // namespace vesk
