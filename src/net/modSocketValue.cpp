#include "net/modSocketValue.h"

#include "base/modText.h"
#include "net/modSocketErrors.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <type_traits>

namespace vesk {

namespace {

std::optional<double> NumberInText(const std::string& text) {
    const std::string trimmed = TrimBlanks(text);
    double number = 0;
    const char* const end = trimmed.data() + trimmed.size();
    const auto [stop, error] = std::from_chars(trimmed.data(), end, number);
    if (error != std::errc{} || stop != end || !std::isfinite(number))
        return std::nullopt;
    return number;
}

/// The number that a value is or reads as, rounded; nothing when it is not numeric.
std::optional<double> NumberOf(const SocketValue& value) {
    const auto number = std::visit(
        [](const auto& held) -> std::optional<double> {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, std::string>)
                return NumberInText(held);
            else if constexpr (std::is_same_v<Held, bool>)
                return held ? -1.0 : 0.0; // all bits set, as in the 16-bit form
            else if constexpr (std::is_arithmetic_v<Held>)
                return static_cast<double>(held);
            else
                return std::nullopt;
        },
        value);
    return number ? std::optional(std::nearbyint(*number)) : std::nullopt;
}

std::size_t SizeOfNumber(VarType type) {
    switch (type) {
    case VarType::Byte:
        return 1;
    case VarType::Integer:
    case VarType::Boolean:
        return 2;
    case VarType::Long:
    case VarType::Single:
        return 4;
    case VarType::Double:
        return 8;
    case VarType::String:
    case VarType::ByteArray:
        break;
    }
    return 0;
}

template <class Number>
Number NumberFromBytes(std::string_view bytes) {
    Number number{};
    std::memcpy(&number, bytes.data(), sizeof number);
    return number;
}

} // namespace

std::string_view BytesOf(const SocketValue& value, const std::string& method) {
    if (const auto* text = std::get_if<std::string>(&value))
        return *text;
    if (const auto* bytes = std::get_if<SocketBytes>(&value))
        return {reinterpret_cast<const char*>(bytes->data()), bytes->size()};
    ThrowSocketMisuse(SocketMisuse::UnsupportedType, method);
}

const std::string& HostOf(const SocketValue& value, const std::string& method) {
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr)
        ThrowSocketMisuse(SocketMisuse::UnsupportedType, method);
    return *text;
}

std::uint16_t PortOf(const SocketValue& value, const std::string& method) {
    if (!IsGiven(value) || std::holds_alternative<SocketBytes>(value))
        ThrowSocketMisuse(SocketMisuse::UnsupportedType, method);
    const std::optional<double> number = NumberOf(value);
    const bool fits = number && *number >= 0 && *number <= 65535; // false for "not a number"
    if (!fits)
        ThrowSocketMisuse(SocketMisuse::BadArgument, method);
    return static_cast<std::uint16_t>(*number);
}

std::size_t LengthLimitOf(const SocketValue& value, const std::string& method) {
    constexpr auto kLargest = std::numeric_limits<std::int32_t>::max();
    if (!IsGiven(value))
        return std::numeric_limits<std::size_t>::max();
    const std::optional<double> number = NumberOf(value);
    const bool fits = number && *number >= 1 && *number <= kLargest; // false for "not a number"
    if (!fits)
        ThrowSocketMisuse(SocketMisuse::BadArgument, method);
    return static_cast<std::size_t>(*number);
}

std::size_t BytesTaken(std::size_t waiting, VarType type, const std::string& method) {
    if (type == VarType::String || type == VarType::ByteArray)
        return waiting;
    const std::size_t size = SizeOfNumber(type);
    if (size == 0)
        ThrowSocketMisuse(SocketMisuse::UnsupportedType, method);
    if (waiting < size)
        ThrowSocketMisuse(SocketMisuse::BadArgument, method);
    return size;
}

SocketValue ValueOfBytes(std::string_view bytes, VarType type) {
    switch (type) {
    case VarType::ByteArray:
        return SocketBytes(bytes.begin(), bytes.end());
    case VarType::Byte:
        return NumberFromBytes<std::uint8_t>(bytes);
    case VarType::Integer:
        return NumberFromBytes<std::int16_t>(bytes);
    case VarType::Boolean:
        return NumberFromBytes<std::int16_t>(bytes) != 0;
    case VarType::Long:
        return NumberFromBytes<std::int32_t>(bytes);
    case VarType::Single:
        return NumberFromBytes<float>(bytes);
    case VarType::Double:
        return NumberFromBytes<double>(bytes);
    case VarType::String:
        break;
    }
    return std::string(bytes);
}

} // namespace vesk
