#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace vesk {

/// A failed operation as its caller sees it: a number, the unit that failed, and a text for people.
struct Failure : std::runtime_error {
    Failure(std::uint32_t failureNumber, std::string failureSource, const std::string& text)
        : std::runtime_error(text), number(failureNumber), source(std::move(failureSource)) {}

    std::uint32_t number; ///< The system's error code, or the raising class's own number.
    std::string source;   ///< Class and method, or unit, that raised it.
};

} // namespace vesk
