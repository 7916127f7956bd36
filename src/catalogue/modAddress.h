#pragma once

#include <string>
#include <string_view>

namespace vesk {

/// Why the downloader cannot use one address, as the end of a sentence; empty when it can. It knows
/// "http://" in lower case only, takes all before the first "/" for the host and always goes to
/// port 80.
std::string AddressFault(std::string_view address);

} // namespace vesk
