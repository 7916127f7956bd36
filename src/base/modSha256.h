#pragma once

#include <functional>
#include <string>

namespace vesk {

/// SHA-256 of a whole file by the system's own functions (from Windows XP SP3 on), as 64
/// hexadecimal digits in lower case.
/// @param meanwhile called every few megabytes, so that a window stays alive
/// @throws Failure for a file that cannot be read, and where the system lacks the functions
std::string Sha256OfFile(const std::string& path, const std::function<void()>& meanwhile = {});

/// Compares a file with its digest.
/// @param expected the digest in lower case; empty for any file
/// @param meanwhile as above
/// @return what was expected and what was found, or why nothing could be; empty when it is right
std::string Sha256Fault(const std::string& path, const std::string& expected,
                        const std::function<void()>& meanwhile = {});

} // namespace vesk
