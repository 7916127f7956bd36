#pragma once

#include "archive/ExtractionOutcome.h"

#include <cstdint>
#include <exception>
#include <string>

/// The words in which failures of members are reported, whatever the archive's kind.
namespace vesk {

/// A member that is kept from extraction. @param member empty for the archive as a whole
MemberFailure NotExtracted(const std::string& member, const std::string& reason);

/// A member whose extraction threw: an ArchiveProblem leaves it "not extracted", what the system
/// could not do "not written".
MemberFailure FailureOf(const std::string& member, const std::exception& thrown);

/// Of two members with one name only the later one is kept.
MemberFailure WrittenOver(const std::string& later, const std::string& earlier);

/// A member that was written, but without its stored time or attributes.
/// @param error the system's error code
MemberFailure NotStamped(const std::string& member, std::uint32_t error);

} // namespace vesk
