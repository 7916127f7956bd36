#include "build/clsReportedIni.h"

#include "base/modFile.h"
#include "base/modSystemError.h"
#include "build/modFileOperations.h"

namespace vesk {

clsReportedIni::clsReportedIni(const BuildContext& context, const std::string& path)
    : context_(context), ini_(path) {}

void clsReportedIni::SetValue(const std::string& section, const std::string& key,
                              const std::string& value) {
    const auto write = [&] {
        RequireInTree(context_, Path());
        MakeWritable(Path());
        if (!ini_.SetValue(section, key, value))
            ThrowLastError("cannot write", Path());
    };
    // Later values are tried all the same, but one file is one problem.
    const ProblemReport silent = [](const Problem&) {};
    const Attempt attempt{Path(), "not written, [" + section + "] " + key};
    if (!ResumeNext(told_ ? silent : context_.report, attempt, write))
        told_ = true;
}

} // namespace vesk
