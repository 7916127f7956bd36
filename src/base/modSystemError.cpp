#include "base/modSystemError.h"

#include "base/Failure.h"

#include <windows.h>

#include <array>

namespace vesk {

std::string SystemErrorText(std::uint32_t code) {
    std::array<char, 512> buffer{};
    const DWORD length =
        FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                       buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
    std::string text(buffer.data(), length);
    text.erase(text.find_last_not_of("\r\n ") + 1);
    return text.empty() ? "error " + std::to_string(code) : text;
}

void ThrowSystemError(std::uint32_t code, const std::string& what, const std::string& object) {
    const std::string reason = SystemErrorText(code);
    throw Failure(code, what, what + " " + object + ": " + reason, reason);
}

void ThrowLastError(const char* what, std::string_view object) {
    const DWORD code = GetLastError();
    ThrowSystemError(code, what, std::string(object));
}

} // namespace vesk
