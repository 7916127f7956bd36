#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

/// One key of an INI text.
struct IniKey {
    std::string name;
    std::string value; ///< Without the blanks, and one pair of quotes, around it.

    bool operator==(const IniKey&) const = default;
};

/// One section, with its keys in their order.
struct IniSection {
    std::string name;
    std::vector<IniKey> keys;

    bool operator==(const IniSection&) const = default;
};

/// A text of the INI form, taken apart in one pass.
struct IniText {
    std::vector<IniSection> sections;

    /// The text can be read in one way only, and the profile functions of every system read it so.
    /// When false, only they know how they read it.
    bool isPlain = true;

    /// The same apart from the lists of names, which the profile functions cut when they are long:
    /// the values that they return are those in the text.
    bool linesArePlain = true;

    /// The first thing that a reader loses: a line that is no section, key or comment, or a
    /// name that occurs twice. A sentence without a full stop; empty when there is nothing.
    std::string lost;
};

/// What the profile functions hold: characters of a value, of the list of section names, and of
/// the list of a section's keys; each list with the NULs that end its names.
inline constexpr std::size_t kLongestIniValue = 254;
inline constexpr std::size_t kLongestSectionList = 254;
inline constexpr std::size_t kLongestKeyList = 131071;

/// True for a value with a pair of quotes around it, which a reader takes away.
bool IsInQuotes(std::string_view value);

/// Takes an INI text apart.
IniText ParseIni(std::string_view text);

/// Length of the name list that the profile functions would return.
std::size_t SectionListLength(const std::vector<IniSection>& sections);
std::size_t KeyListLength(const IniSection& section);

/// Names of all sections in a text of the INI form, in its order, without the brackets.
std::vector<std::string> SectionNames(std::string_view iniText);

/// A text as a truth value: "True" and "False" in any case, or a number (0 is false). Nothing for
/// any other text, the empty one included.
std::optional<bool> ToBoolean(std::string_view text);

} // namespace vesk
