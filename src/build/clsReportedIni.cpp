#include "build/clsReportedIni.h"

#include "base/Failure.h"
#include "base/modFile.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "build/modFileOperations.h"
#include "catalogue/modIniText.h"

#include <windows.h>

namespace vesk {

namespace {

bool HoldsKey(const std::string& text, const std::string& key) {
    return FindNoCase(text.starts_with(kUtf16Mark) ? AsciiOfUtf16(text) : text, key) !=
           std::string::npos;
}

} // namespace

void RequireAnsi(const std::string& path) {
    const std::string text = ReadFileIfThere(path);
    if (IsUtf16(text) && !text.starts_with(kUtf16Mark))
        throw Failure(ERROR_NO_UNICODE_TRANSLATION, "RequireAnsi", kIsUtf16);
}

clsReportedIni::clsReportedIni(const clsBuildContext& context, const std::string& path)
    : context_(context), ini_(path) {}

void clsReportedIni::TellCut(const std::string& section, const std::string& key) const {
    if (ini_.IsCut(section, key))
        context_.report({Path(), "not taken over in full, [" + section + "] " + key,
                         "it is longer than " + std::to_string(kLongestIniValue) + " characters"});
}

void clsReportedIni::SetValue(const std::string& section, const std::string& key,
                              const std::string& value) {
    const auto write = [&] {
        RequireInTree(context_, Path());
        RequireAnsi(Path());
        MakeWritable(Path());
        if (!ini_.SetValue(section, key, value))
            ThrowLastError("cannot write", Path());
        // On a full disk some systems call a file written of which nothing is there.
        if (!HoldsKey(ReadFileIfThere(Path()), key))
            ThrowSystemError(ERROR_DISK_FULL, "cannot write", Path());
    };
    // Later values are still tried, but one file is one problem.
    const ProblemReport silent = [](const Problem&) {};
    const Attempt attempt{Path(), "not written, [" + section + "] " + key};
    if (!ResumeNext(told_ ? silent : context_.report, attempt, write))
        told_ = true;
}

} // namespace vesk
