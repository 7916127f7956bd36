#pragma once

#include <cstdint>
#include <string>

/// The errors of the socket layer: the system's codes with their texts, and the numbers that the
/// socket object raises itself.
namespace vesk {

/// Text of a system socket error; "Unknown error." for a code without one. The texts are fixed and
/// do not depend on the system's language.
std::string GetErrorDescription(std::int32_t code);

/// What a caller of a socket method did wrong.
enum class SocketMisuse {
    WrongState,      ///< 40006: no connection, or a request the protocol does not know.
    BadArgument,     ///< 40014: not in the correct format or range.
    BadAddress,      ///< 40014 too, with a text of its own: an address that cannot be used.
    UnsupportedType, ///< 40018: a kind of value that cannot be sent or received.
    InvalidState,    ///< 40020: not at the object's current state.
};

/// Throws the Failure for a misuse. @param method name of the socket method ("Connect"); the
/// source becomes "clsSocketMaster." and that name.
[[noreturn]] void ThrowSocketMisuse(SocketMisuse misuse, const std::string& method);

/// Throws the Failure for a system error, with its text from GetErrorDescription.
[[noreturn]] void ThrowSocketError(std::int32_t code, const std::string& source);

/// Throws the Failure "Out of memory".
[[noreturn]] void ThrowOutOfMemory(const std::string& source);

/// Text of the Failure kOutOfMemory.
inline constexpr const char* kOutOfMemoryText = "Out of memory";

} // namespace vesk
