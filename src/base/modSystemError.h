#pragma once

#include <cstdint>
#include <string>

namespace vesk {

/// The system's sentence for an error code, without the line end that Windows appends;
/// "error N" for a code that has none.
std::string SystemErrorText(std::uint32_t code);

/// Throws a Failure "<what> <object>: <the system's sentence>" for an error code of the system.
[[noreturn]] void ThrowSystemError(std::uint32_t code, const std::string& what,
                                   const std::string& object);

/// The same for the calling thread's last error. Call it first thing after the failing call.
[[noreturn]] void ThrowLastError(const std::string& what, const std::string& object);

} // namespace vesk
