#pragma once

#include "archive/ByteSource.h"
#include "archive/ZipMember.h"

#include <vector>

namespace vesk {

/// The members of an archive without a central directory, from the headers in front of their data.
/// Ends at the first place where no header stands, and at a member whose end cannot be found.
/// Members are not judged yet, and have no attributes. @throws what the source throws
std::vector<ZipMember> MembersByLocalHeaders(ByteSource& archive);

} // namespace vesk
