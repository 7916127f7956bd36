#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vesk {

/// ZIP's traditional encryption: a stream of bytes from three running keys. Weak, but in use.
class clsZipCipher {
public:
    /// Begins a member's stream, of which the first 12 bytes are a header.
    explicit clsZipCipher(std::string_view password);

    /// The plain byte for the next one of the stream; bytes come in their order.
    std::byte Decrypt(std::byte cipher);

private:
    void Update(std::uint8_t plain);
    std::array<std::uint32_t, 3> keys_ = {0x12345678, 0x23456789, 0x34567890};
};

} // namespace vesk
