#pragma once

#include "archive/modZipDirectory.h"

namespace vesk {

/// The member's name in the ANSI code page. Nothing when its UTF-8 is damaged or holds a character
/// that the code page lacks: a file of a nearly right name would never be found again.
std::optional<std::string> AnsiName(const ZipMember& member);

} // namespace vesk
