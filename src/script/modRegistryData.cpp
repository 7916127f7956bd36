#include "script/modRegistryData.h"

#include "base/Failure.h"
#include "base/RunTimeError.h"
#include "base/modText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <string_view>

namespace vesk {

namespace {

[[noreturn]] void RaiseMismatch(const std::string& text) {
    throw Failure(kTypeMismatch, "RegistryData", text);
}

std::int32_t NumberFromText(const std::string& text) {
    std::string digits = TrimBlanks(text);
    if (digits.starts_with('+') && !digits.starts_with("+-"))
        digits.erase(0, 1);
    double value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    // "inf" and "nan" would be read as well; they stop being numbers at their first letter here.
    const bool spelledOut = digits.find_first_not_of("0123456789+-.eE") != std::string::npos;
    if (spelledOut || stop != end ||
        (error != std::errc() && error != std::errc::result_out_of_range))
        RaiseMismatch("not a number: \"" + text + "\"");
    const double rounded = std::nearbyint(value);
    using Limits = std::numeric_limits<std::int32_t>;
    if (error != std::errc() || rounded < Limits::min() || rounded > Limits::max())
        throw Failure(kOverflow, "RegistryData", "does not fit in 32 bits: \"" + text + "\"");
    return static_cast<std::int32_t>(rounded);
}

std::string TextOf(const RegistryData& data) {
    if (const auto* text = std::get_if<std::string>(&data))
        return *text;
    if (const auto* number = std::get_if<std::int32_t>(&data))
        return std::to_string(*number);
    RaiseMismatch("a list of texts where one text is needed");
}

/// The number's hexadecimal text, and of its UTF-16 form only as many bytes as it has characters:
/// every second byte is zero and the second half of the text is lost. Values written so are in use.
std::string BinaryBytes(std::int32_t number) {
    std::array<char, 9> text{};
    const int length = std::snprintf(text.data(), text.size(), "%X", static_cast<unsigned>(number));
    std::string bytes;
    for (std::size_t i = 0; i < static_cast<std::size_t>(length); ++i)
        bytes += i % 2 == 0 ? text.at(i / 2) : '\0';
    return bytes;
}

std::string NumberBytes(std::int32_t number) {
    const auto bits = static_cast<std::uint32_t>(number);
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(bits >> shift & 0xFF);
    return bytes;
}

/// No second NUL ends the list, though the system's own tools write one: what is stored so far has
/// none, and readers of these values go by the size.
std::string ListBytes(const RegistryData& data) {
    const auto* list = std::get_if<std::vector<std::string>>(&data);
    if (list == nullptr)
        RaiseMismatch("one value where a list of texts is needed");
    std::string bytes;
    for (const std::string& text : *list)
        bytes += text + '\0';
    return bytes;
}

} // namespace

std::int32_t NumberOf(const RegistryData& data) {
    if (const auto* number = std::get_if<std::int32_t>(&data))
        return *number;
    return NumberFromText(TextOf(data));
}

std::string RegistryBytes(const RegistryData& data, std::uint32_t type) {
    switch (type) {
    case kRegistryText:
        return TextOf(data) + '\0';
    case kRegistryBinary:
        return BinaryBytes(NumberOf(data));
    case kRegistryNumber:
        return NumberBytes(NumberOf(data));
    case kRegistryTextList:
        return ListBytes(data);
    default:
        return {};
    }
}

} // namespace vesk
