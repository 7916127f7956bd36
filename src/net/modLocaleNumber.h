#pragma once

#include <string>

namespace vesk {

/// A whole number, given as its digits, with the separators of the user's locale between them.
std::string GroupDigits(const std::string& digits);

} // namespace vesk
