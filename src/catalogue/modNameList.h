#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vesk {

/// Takes apart a buffer of names each ended by a NUL, as the profile functions fill it. The result
/// always ends with one empty element behind the names. A last name that the buffer's end cut off
/// before its NUL is dropped.
std::vector<std::string> SplitNameList(std::string_view buffer);

} // namespace vesk
