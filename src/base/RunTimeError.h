#pragma once

#include <cstdint>

namespace vesk {

/// Numbers of the failures that the program raises itself and not the system: callers know them
/// from the language that plug-in authors and their tools use.
enum RunTimeError : std::uint32_t {
    kInvalidCall = 5,
    kOverflow = 6,
    kOutOfMemory = 7,
    kSubscriptOutOfRange = 9,
    kTypeMismatch = 13,
};

} // namespace vesk
