#pragma once

#include <winsock2.h>

#include <cstdint>
#include <string>

/// Internet addresses, as 32 bits in network order; INADDR_NONE stands for "none".
namespace vesk {

/// Address and port (this one in the machine's order) as the system's calls take them.
sockaddr_in EndPoint(std::uint32_t address, std::uint16_t port);

/// "127.0.0.1" and the like; empty for none.
std::string AddressText(std::uint32_t address);

/// The address that a dotted text stands for; none for any other text.
std::uint32_t DottedAddress(const std::string& text);

/// Whether a text can be looked up as a host's name: the system takes an empty name for this
/// machine, and a name that is cut off is another one.
bool IsHostName(const std::string& text);

/// First address of a host entry; none when it has none of this kind, or is null.
std::uint32_t FirstAddressOf(const hostent* host);

} // namespace vesk
