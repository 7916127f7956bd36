#pragma once

#include <source_location>
#include <stdexcept>
#include <string>

/// For what must hold for every input. Throws a std::logic_error, which ends a fuzzer.
inline void Require(bool holds, std::source_location at = std::source_location::current()) {
    if (!holds)
        throw std::logic_error("does not hold: " + std::string(at.function_name()) + " " +
                               std::to_string(at.line()));
}
