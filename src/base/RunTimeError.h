#pragma once

#include <cstdint>

namespace vesk {

/// Numbers of the failures that the program raises itself and not the system: fixed ones, which
/// callers look at.
enum RunTimeError : std::uint32_t {
    kInvalidCall = 5,
    kOverflow = 6,
    kOutOfMemory = 7,
    kSubscriptOutOfRange = 9,
    kTypeMismatch = 13,
};

} // namespace vesk
