#pragma once

#include <string>

namespace vesk {

/// The path that a path leads to: without links, short names and drives that stand for folders on
/// its way, in UTF-16. What is missing at its end stays as it is; so does all of it, short names
/// excepted, where the system does not say (before Windows Vista, of a share).
/// @param path absolute
std::wstring RealPath(const std::wstring& path);

/// The same of a file or folder that is open. @param handle of the system
/// @return empty where the system does not say
std::wstring RealPathOf(void* handle);

/// The path of what the system's core names otherwise, "C:\a" for "\Device\HarddiskVolume1\a".
/// @return empty where no drive leads to it
std::wstring PathOfDeviceName(const std::wstring& name);

/// The path with the long form of each short name in it; as it is where the system cannot tell.
std::wstring WithLongNames(const std::wstring& path);

} // namespace vesk
