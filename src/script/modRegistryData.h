#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace vesk {

/// The registry's own numbers for the types of values.
enum RegistryType : std::uint32_t {
    kRegistryNone = 0,
    kRegistryText = 1,
    kRegistryExpandableText = 2,
    kRegistryBinary = 3,
    kRegistryNumber = 4,
    kRegistryTextList = 7,
};

/// Data of a registry value as callers have it.
using RegistryData = std::variant<std::string, std::int32_t, std::vector<std::string>>;

/// The data as a signed 32-bit number: a number as it is, a text by its decimal value, rounded to
/// the nearest whole number (halves to the even one). Blanks around it are allowed.
/// @throws Failure for a text that is no number, a number that does not fit, and a list
std::int32_t NumberOf(const RegistryData& data);

/// The bytes under which data of a type (1, 3, 4 or 7) is stored; empty for any other type.
/// @throws Failure when the data cannot be taken as that type
std::string RegistryBytes(const RegistryData& data, std::uint32_t type);

} // namespace vesk
