#include "archive/modMemberName.h"

#include "base/CodePage.h"
#include "base/modText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace vesk {

namespace {

constexpr std::size_t kLongestPart = 255; // what the file systems of Windows take

/// The character's number. The bytes of code page 1252 that matter here have Unicode's numbers.
template <class Char>
std::uint32_t Number(Char c) {
    return static_cast<std::make_unsigned_t<Char>>(c);
}

template <class Char>
bool IsSeparator(Char c) {
    return c == '/' || c == '\\';
}

/// A device's name is ASCII but for the last digit: longer ones, and others, come out as "".
template <class Char>
std::string LowerStem(std::basic_string_view<Char> part) {
    std::basic_string_view<Char> stem = part.substr(0, part.find(Char{'.'}));
    while (!stem.empty() && stem.back() == ' ')
        stem.remove_suffix(1);
    constexpr std::size_t kLongestDevice = 7; // "conout$"
    std::string lower;
    for (const Char c : stem.substr(0, stem.size() > kLongestDevice ? 0 : stem.size())) {
        const std::uint32_t number = Number(c);
        if (number > 0xFF)
            return {};
        const bool upper = number >= 'A' && number <= 'Z';
        lower += static_cast<char>(upper ? number + ('a' - 'A') : number);
    }
    return lower;
}

/// Windows opens a device for these names whatever extension follows them.
template <class Char>
bool IsDeviceName(std::basic_string_view<Char> part) {
    constexpr std::array<std::string_view, 6> kDevices = {"con", "prn",    "aux",
                                                          "nul", "conin$", "conout$"};
    const std::string stem = LowerStem(part);
    if (std::ranges::find(kDevices, stem) != kDevices.end())
        return true;
    const bool port = stem.starts_with("com") || stem.starts_with("lpt");
    // Besides 0 to 9 the superscript digits one, two, three name ports.
    constexpr std::string_view kPortNumbers = "0123456789\xB9\xB2\xB3";
    return port && stem.size() == 4 && kPortNumbers.find(stem[3]) != std::string_view::npos;
}

template <class Char>
bool IsReserved(Char c) {
    constexpr std::string_view kReserved = ":*?\"<>|";
    return Number(c) < 0x20 ||
           (Number(c) < 0x80 && kReserved.find(static_cast<char>(c)) != std::string_view::npos);
}

bool HasHalfPair(std::wstring_view part) {
    for (std::size_t i = 0; i < part.size(); ++i) {
        const std::uint32_t number = Number(part[i]);
        if (number < 0xD800 || number > 0xDFFF)
            continue;
        const std::uint32_t next = i + 1 < part.size() ? Number(part[i + 1]) : 0;
        if (number > 0xDBFF || next < 0xDC00 || next > 0xDFFF)
            return true;
        ++i;
    }
    return false;
}

/// Why a part of a name cannot be a plain file's or folder's name; empty when it can.
template <class Char>
std::string_view ObjectionTo(std::basic_string_view<Char> part) {
    if (part.size() > kLongestPart)
        return "its name is too long";
    if (part == std::basic_string<Char>(2, Char{'.'}))
        return "its name leads out of the folder";
    if (part.back() == '.' || part.back() == ' ') // which Windows cuts
        return "a part of its name ends in a dot or a blank";
    if (std::ranges::any_of(part, IsReserved<Char>))
        return "its name holds a character that no file name can";
    if constexpr (std::is_same_v<Char, wchar_t>)
        if (HasHalfPair(part))
            return "its name holds a character that no file name can";
    if (IsDeviceName(part))
        return "its name is a device name";
    return {};
}

/// @return nothing is wrong with the name when the objection is empty
template <class Char>
struct Joined {
    std::basic_string<Char> path;
    std::string_view objection;
};

/// @param plain the name, where each character that looks like a separator is one
template <class Char>
Joined<Char> Join(std::basic_string_view<Char> folder, std::basic_string_view<Char> name,
                  std::basic_string_view<Char> plain) {
    if (name.size() > kLongestMemberName)
        return {{}, "its name is too long"};
    if (!name.empty() && IsSeparator(name[0]))
        return {{}, "its name is an absolute path"};
    std::basic_string<Char> path(folder);
    path.reserve(folder.size() + 1 + name.size());
    for (std::size_t depth = 0; !name.empty();) {
        const auto size = static_cast<std::size_t>(std::ranges::find_if(plain, IsSeparator<Char>) -
                                                   plain.begin());
        const std::basic_string_view<Char> part = name.substr(0, size);
        const std::basic_string_view<Char> plainPart = plain.substr(0, size);
        name.remove_prefix(std::min(size + 1, name.size()));
        plain.remove_prefix(std::min(size + 1, plain.size()));
        if (part.empty() || (part.size() == 1 && part[0] == '.'))
            continue;
        if (const std::string_view objection = ObjectionTo(plainPart); !objection.empty())
            return {{}, objection};
        if (++depth > kDeepestMemberName)
            return {{}, "its name leads through too many folders"};
        (path += Char{'\\'}).append(part);
    }
    if (path.size() == folder.size())
        return {{}, "it has no name"};
    return {std::move(path), {}};
}

} // namespace

std::optional<std::string> PathInside(std::string_view folder, std::string_view memberName) {
    const std::string plain = WithoutTrailBytes(memberName);
    Joined<char> joined = Join(std::string_view(WithoutTrailingBackslash(folder)), memberName,
                               std::string_view(plain));
    if (!joined.objection.empty())
        return std::nullopt;
    return std::move(joined.path);
}

std::optional<std::wstring> PathInside(std::wstring_view folder, std::wstring_view memberName,
                                       std::string* objection) {
    while (folder.ends_with(L'\\'))
        folder.remove_suffix(1);
    Joined<wchar_t> joined = Join(folder, memberName, memberName);
    if (objection != nullptr)
        *objection = joined.objection;
    if (!joined.objection.empty())
        return std::nullopt;
    return std::move(joined.path);
}

bool NamesFolderItself(std::wstring_view memberName) {
    if (memberName.empty() || memberName[0] != '.')
        return false;
    bool startsPart = true; // where a dot may stand
    for (const wchar_t c : memberName) {
        if (!IsSeparator(c) && (c != '.' || !startsPart))
            return false;
        startsPart = IsSeparator(c);
    }
    return true;
}

} // namespace vesk
