#include "archive/modMemberName.h"

#include "base/modText.h"

#include <algorithm>
#include <array>

namespace vesk {

namespace {

/// Windows opens a device for these names whatever extension follows them.
bool IsDeviceName(std::string_view part) {
    constexpr std::array<std::string_view, 6> kDevices = {"con", "prn",    "aux",
                                                          "nul", "conin$", "conout$"};
    std::string stem = LowerCase(part.substr(0, part.find('.')));
    stem.erase(stem.find_last_not_of(' ') + 1);
    if (std::ranges::find(kDevices, stem) != kDevices.end())
        return true;
    const bool port = stem.starts_with("com") || stem.starts_with("lpt");
    // Besides 0 to 9 the superscript digits one, two, three (of code page 1252) name ports.
    constexpr std::string_view kPortNumbers = "0123456789\xB9\xB2\xB3";
    return port && stem.size() == 4 && kPortNumbers.find(stem[3]) != std::string_view::npos;
}

bool IsPlainName(std::string_view part) {
    if (part.empty() || part.back() == '.' || part.back() == ' ')
        return false; // also "." and "..": Windows cuts dots and blanks at the end
    const auto forbidden = [](char c) {
        constexpr std::string_view kReserved = ":*?\"<>|";
        return static_cast<unsigned char>(c) < 0x20 || kReserved.find(c) != std::string_view::npos;
    };
    return std::ranges::none_of(part, forbidden) && !IsDeviceName(part);
}

} // namespace

std::optional<std::string> PathInside(std::string_view folder, std::string_view memberName) {
    std::string name(memberName);
    std::ranges::replace(name, '/', '\\');
    if (name.ends_with('\\'))
        name.pop_back();
    if (name.empty())
        return std::nullopt;
    std::string path = WithoutTrailingBackslash(folder);
    for (std::size_t from = 0; from <= name.size();) {
        const std::size_t end = std::min(name.find('\\', from), name.size());
        const std::string_view part = std::string_view(name).substr(from, end - from);
        if (!IsPlainName(part))
            return std::nullopt;
        path.append("\\").append(part);
        from = end + 1;
    }
    return path;
}

} // namespace vesk
