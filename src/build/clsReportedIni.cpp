#include "build/clsReportedIni.h"

#include "base/modFile.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "build/modFileOperations.h"

namespace vesk {

namespace {

/// A text in UTF-16 is not looked into.
bool HoldsKey(const std::string& text, const std::string& key) {
    return text.find('\0') != std::string::npos || FindNoCase(text, key) != std::string::npos;
}

} // namespace

clsReportedIni::clsReportedIni(const BuildContext& context, const std::string& path)
    : context_(context), ini_(path) {}

void clsReportedIni::SetValue(const std::string& section, const std::string& key,
                              const std::string& value) {
    const auto write = [&] {
        RequireInTree(context_, Path());
        MakeWritable(Path());
        if (!ini_.SetValue(section, key, value))
            ThrowLastError("cannot write", Path());
        // On a full disk some systems call a file written of which nothing is there.
        if (!HoldsKey(ReadWholeFile(Path()), key))
            ThrowSystemError(ERROR_DISK_FULL, "cannot write", Path());
    };
    // Later values are tried all the same, but one file is one problem.
    const ProblemReport silent = [](const Problem&) {};
    const Attempt attempt{Path(), "not written, [" + section + "] " + key};
    if (!ResumeNext(told_ ? silent : context_.report, attempt, write))
        told_ = true;
}

} // namespace vesk
