#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace vesk {

/// Number of failures caused by damage in a cabinet.
constexpr std::uint32_t kCabDamaged = 13;

/// Throws the failure of a cabinet: its source is "CabFile", its text the fixed one for the number.
/// @param reason why, for people; empty when the text says all
[[noreturn]] void ThrowCabFailure(std::uint32_t number, const std::string& reason = {});

/// The number for what was thrown, whoever threw it. An ArchiveProblem while writing means that
/// something is in the way.
std::uint32_t CabNumberOf(const std::exception& failure);

} // namespace vesk
