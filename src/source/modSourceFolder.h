#pragma once

#include "source/SourceState.h"

#include <string>

namespace vesk {

/// What a look at a chosen source folder gave, for the front end to show.
struct SourceCheck {
    /// The folder, ending in "\"; the chosen path itself when there is no such file or folder.
    std::string path;
    bool usable = false;      ///< Shown as green (usable) or dark red text.
    std::string productLabel; ///< Product name and service pack; empty when not usable.
    std::string unread;       ///< Why product and service pack could not be read; mostly empty.
};

/// Looks at a folder (or a file in it) that the user chose as Windows source, and takes over what
/// it says of product and service pack. A folder that is no source leaves the state as it was.
SourceCheck CheckSourceFolder(const std::string& chosenPath, SourceState& state);

/// True when the folder (ending in "\") directly holds the three files that make it an I386 folder.
bool IsI386Folder(const std::string& folder);

/// What LAYOUT.INF in an I386 folder says.
struct SourceProduct {
    std::string productName;
    std::string servicePackTag; ///< Extension of the spcdtagfilei value, as written; may be empty.
};

/// Reads it. @param i386Folder ending in "\"
/// @throws Failure when it is missing, cannot be read, or is too large for such a file
SourceProduct ReadSourceProduct(const std::string& i386Folder);

/// Sets the codes that product name and tag stand for; what is not recognised keeps its code.
void ApplySourceProduct(const SourceProduct& product, SourceState& state);

} // namespace vesk
