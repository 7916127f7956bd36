#pragma once

#include <string>

namespace vesk {

/// Title of a category for people, from its value and key: "100_system_tools", "100" gives
/// "System Tools".
std::string CategoryCaption(const std::string& value, const std::string& key);

} // namespace vesk
