#pragma once

#include "archive/modZipDirectory.h"

namespace vesk {

/// The members of an archive without a central directory, from the headers in front of their data.
/// Ends at the first place where no header stands, and at a member whose end cannot be found.
/// Members are not judged yet, and have no attributes.
std::vector<ZipMember> MembersByLocalHeaders(std::span<const std::byte> archive);

} // namespace vesk
