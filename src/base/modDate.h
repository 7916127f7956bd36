#pragma once

#include <string>

namespace vesk {

/// The current date and time in the system's general format: the user's short date, a blank, the
/// user's time.
std::string GeneralDate();

} // namespace vesk
