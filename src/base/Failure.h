#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

namespace vesk {

/// A failed operation as its caller sees it: a number, the unit that failed, and a text for people.
struct Failure : std::runtime_error {
    Failure(std::uint32_t failureNumber, std::string failureSource, const std::string& text)
        : Failure(failureNumber, std::move(failureSource), text, text) {}

    /// @param why the reason alone, where the text also says what failed
    Failure(std::uint32_t failureNumber, std::string failureSource, const std::string& text,
            std::string why)
        : std::runtime_error(text),
          number(failureNumber),
          source(std::move(failureSource)),
          reason(std::move(why)) {}

    std::uint32_t number; ///< The system's error code, or the raising class's own number.
    std::string source;   ///< The unit or method that raised it, or what was tried: "cannot read".
    std::string reason;   ///< Why it failed, without what and where.
};

} // namespace vesk
