#pragma once

#include <string>

namespace vesk {

/// One part of a file's version record, as its bytes: "\" is the fixed part.
/// Empty when the file has no such record or the record no such part.
std::string FileVersionPart(const std::string& path, const std::string& part);

} // namespace vesk
