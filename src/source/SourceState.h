#pragma once

#include <string>

namespace vesk {

/// What is known of the Windows installation source while the program runs.
struct SourceState {
    bool valid = false;          ///< Raised by the first usable folder and never lowered.
    std::string productCode;     ///< "0" home, "1" professional, "2" server 2003; empty: unknown.
    std::string servicePackCode; ///< "1", "2" or "3"; empty: unknown.
};

} // namespace vesk
