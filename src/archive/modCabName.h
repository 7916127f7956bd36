#pragma once

#include "archive/CabDirectory.h"

#include <string>

namespace vesk {

/// The member's name in UTF-16, as it stands in the cabinet. Bytes that are not the UTF-8 they are
/// said to be are taken as ANSI.
std::wstring CabEntryName(const CabEntry& entry);

/// The same in the ANSI code page.
std::string CabMemberName(const CabEntry& entry);

/// True for a member that is a folder of the file system.
bool IsCabFolderEntry(const CabEntry& entry);

/// Sets the `refusal` of each member whose name does not pass the gate for names from archives.
/// Members refused already are left as they are.
void JudgeCabNames(CabDirectory& directory);

} // namespace vesk
