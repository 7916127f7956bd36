#pragma once

#include <string>
#include <string_view>

/// What the name of an archive says. Names come from the catalogue, and nobody vouches for them.
namespace vesk {

/// What a file is extracted as, by the extension of its name.
enum class ArchiveKind { Zip, Cabinet, Neither };

/// The kind of a file of this name or path.
ArchiveKind ArchiveKindOf(std::string_view path);

/// What is wrong with a name that an archive in the program folder is to have, behind "it is":
/// nothing elsewhere may be read, written or deleted through it, nor a file of the program itself.
/// Empty when it is fine, whatever its extension.
std::string ArchiveNameFault(std::string_view name);

/// True when ArchiveNameFault has nothing to say.
bool IsPlainArchiveName(std::string_view name);

/// True for a name under which a build may write or delete a file in the program folder: a plain
/// one of a .zip or .cab file. Nothing that Windows runs or loads has such a name.
bool IsReplaceableArchiveName(std::string_view name);

/// True when a file of this name can lie in the program folder: it is no path, and Windows takes it
/// as it stands.
bool IsPlainFileName(std::string_view name);

} // namespace vesk
