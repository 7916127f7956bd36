#pragma once

#include <string>

namespace vesk {

/// One cabinet archive.
class clsCab {
public:
    std::string CabName;           ///< Full path of the cabinet.
    std::string FileToExtract;     ///< One member's name; empty for all.
    std::string DestinationFolder; ///< Empty for the cabinet's own folder.

    void Extract();
};

} // namespace vesk
