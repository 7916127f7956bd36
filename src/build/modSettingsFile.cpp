#include "build/modSettingsFile.h"

#include "build/clsReportedIni.h"

#include <array>
#include <string>
#include <utility>

namespace vesk {

void WriteSettingsFile(const clsBuildContext& context) {
    const std::string& folder = context.InstallFolder();
    clsReportedIni ini(context, folder + "\\input.inf");
    context.Log("Creating File: " + ini.Path());
    // In this order: a fresh file lists its keys as they are written.
    const std::array<std::pair<const char*, std::string>, 22> settings = {{
        {"NoUpperCase", "0"},
        {"verbose", "0"},
        {"skipfiles", "0"},
        {"verify", "1"},
        {"skipregistry", "0"},
        {"buildiso", "1"},
        {"burncd", "0"},
        {"eject", "0"},
        {"blankcdrw", "1"},
        {"useAbsoluteOutput", "0"},
        {"burnusing", "0"},
        {"customdir", ""},
        {"isofile", folder + "\\veskbuilder.iso"},
        {"outdir", "Vesk"},
        {"fulloutdir", folder + "\\Vesk"},
        {"source", context.inputs.sourceFolder},
        {"volumeid", ""},
        {"device", ""},
        {"langfile", ""},
        {"pluginColumns", ""},
        {"CleanIsoAfterBurn", "0"},
        {"CleanOutputAfterBurn", "0"},
    }};
    for (const auto& [key, value] : settings)
        ini.SetValue("input", key, value);
}

} // namespace vesk
