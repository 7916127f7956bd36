#include "build/modMenuFile.h"

#include "build/clsReportedIni.h"

#include <cstddef>
#include <string>

namespace vesk {

void WriteMenuFile(const clsBuildContext& context) {
    clsReportedIni ini(context, context.InstallFolder() + "\\vesklive.ini");
    context.Log("Creating File: " + ini.Path());
    for (std::size_t i = 0; i < context.menuRecords.size(); ++i) {
        const MenuRecord& record = context.menuRecords[i];
        if (record.name.empty())
            continue;
        const std::string section = std::to_string(i);
        ini.SetValue(section, "Name", record.name);
        ini.SetValue(section, "Cat", record.cat);
        for (std::size_t j = 0; j < record.infs.size(); ++j)
            ini.SetValue(section, "Inf" + std::to_string(j), record.infs[j]);
    }
    for (const CategoryRecord& category : context.catalogue.categories)
        ini.SetValue("Categories", category.key, category.value);
}

} // namespace vesk
