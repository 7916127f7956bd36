#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vesk {

/// A value of bytes.
using SocketBytes = std::vector<std::uint8_t>;

/// A value of one of several kinds, as socket methods take and give it. The first kind is "not
/// given". Text holds one character per byte.
using SocketValue = std::variant<std::monostate, std::string, SocketBytes, bool, std::uint8_t,
                                 std::int16_t, std::int32_t, float, double>;

/// The kind of value that received bytes are to become.
enum class VarType : std::int16_t {
    Integer = 2, ///< 16 bits
    Long = 3,    ///< 32 bits
    Single = 4,
    Double = 5,
    String = 8,
    Boolean = 11, ///< 16 bits, true unless all are zero
    Byte = 17,
    ByteArray = 0x2000 + 17,
};

/// False for the kind "not given".
inline bool IsGiven(const SocketValue& value) {
    return !std::holds_alternative<std::monostate>(value);
}

/// The bytes of a text or byte array. @throws Failure 40018 for any other kind
std::string_view BytesOf(const SocketValue& value, const std::string& method);

/// A host name or address, which must be text. @throws Failure 40018
const std::string& HostOf(const SocketValue& value, const std::string& method);

/// A port, from a number or a text that reads as one. @throws Failure 40014 when it is none or not
/// within 0..65535, 40018 for a kind that cannot be a port
std::uint16_t PortOf(const SocketValue& value, const std::string& method);

/// A greatest length: any length when not given. @throws Failure 40014 below 1 or not numeric
std::size_t LengthLimitOf(const SocketValue& value, const std::string& method);

/// How many of the waiting bytes a value of the kind takes: all of them as text or byte array, its
/// own size as a number. @throws Failure 40014 when there are fewer, 40018 for an unknown kind
std::size_t BytesTaken(std::size_t waiting, VarType type, const std::string& method);

/// The value that exactly these bytes (see BytesTaken) make; numbers have their low byte first.
SocketValue ValueOfBytes(std::string_view bytes, VarType type);

} // namespace vesk
