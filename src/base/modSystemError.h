#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vesk {

/// The system's sentence for an error code, without the line end that Windows appends;
/// "error N" for a code that has none.
std::string SystemErrorText(std::uint32_t code);

/// Throws a Failure "<what> <object>: <the system's sentence>" for an error code of the system.
[[noreturn]] void ThrowSystemError(std::uint32_t code, const std::string& what,
                                   const std::string& object);

/// The same for the calling thread's last error, which is taken before anything else happens: no
/// argument may need memory. Call it first thing after the failing call.
[[noreturn]] void ThrowLastError(const char* what, std::string_view object);

} // namespace vesk
