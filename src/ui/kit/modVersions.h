#pragma once

#include <string>

namespace vesk {

/// The legal notice of the running program's version record; empty when it has none.
std::string LegalNotice();

/// The system's major version, as this program is shown it.
unsigned SystemMajorVersion();

} // namespace vesk
