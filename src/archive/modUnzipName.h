#pragma once

#include "archive/ZipMember.h"

#include <string>

namespace vesk {

/// The member's name in UTF-16, as it stands in the archive. Bytes that are not the UTF-8 they are
/// said to be are taken as ANSI.
std::wstring ZipEntryName(const ZipMember& member);

} // namespace vesk
