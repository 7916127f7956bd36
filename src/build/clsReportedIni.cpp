#include "build/clsReportedIni.h"

#include "base/modFile.h"
#include "base/modSystemError.h"

#include <windows.h>

namespace vesk {

clsReportedIni::clsReportedIni(const BuildContext& context, const std::string& path)
    : context_(context), ini_(path) {}

void clsReportedIni::SetValue(const std::string& section, const std::string& key,
                              const std::string& value) {
    MakeWritable(Path());
    if (ini_.SetValue(section, key, value) || told_)
        return;
    const DWORD error = GetLastError();
    told_ = true;
    context_.report(
        {Path(), "not written, [" + section + "] " + key, AsReason(SystemErrorText(error))});
}

} // namespace vesk
