#pragma once

#include "build/BuildFrontEnd.h"
#include "build/clsBuildRun.h"
#include "catalogue/Catalogue.h"

#include <string>
#include <vector>

namespace vesk {

/// One plug-in of the menu file.
struct MenuRecord {
    std::string name;
    std::string cat;
    std::vector<std::string> infs; ///< Full paths of its INF files.
};

/// What the steps of one build run share.
struct BuildContext {
    const BuildInputs& inputs;
    Catalogue& catalogue;
    BuildFrontEnd& frontEnd;
    std::vector<MenuRecord> menuRecords;

    void Log(const std::string& line) const { frontEnd.AddLogLine(line, LogMode::Line); }
    void Status(const std::string& caption) const { frontEnd.SetStatus(caption); }
};

} // namespace vesk
