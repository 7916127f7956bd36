#include "archive/modArchive.h"

#include "archive/modCabArchive.h"
#include "archive/modMemberFailure.h"
#include "archive/modMemberName.h"
#include "archive/modUnzip.h"
#include "base/CodePage.h"
#include "base/modText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vesk {

namespace {

constexpr const char* kNothingInIt = "it is empty";

UnzipCallbacks CallbacksOf(const ExtractionOwner& owner) {
    UnzipCallbacks callbacks;
    callbacks.password = owner.password;
    callbacks.progress = owner.progress;
    return callbacks;
}

/// An archive out of which nothing came has to say why.
ExtractionOutcome WithReason(ExtractionOutcome outcome) {
    if (outcome.extracted == 0 && outcome.failures.empty())
        outcome.failures.push_back(NotExtracted("", kNothingInIt));
    return outcome;
}

} // namespace

bool IsPlainArchiveName(std::string_view name) {
    constexpr std::array<std::string_view, 8> kOwnFiles = {
        "veskbuilder.exe", "veskbuild.exe",  "veskbuilder.ini",          "veskbuilder.hlp",
        "readme.txt",      "veskbuider.log", "veskbuilder-problems.txt", "veskbuilder.sha256"};
    const auto isName = [name](std::string_view own) { return EqualNoCase(own, name); };
    return WithoutTrailBytes(name).find_first_of("\\/") == std::string::npos &&
           PathInside("", name).has_value() && std::ranges::none_of(kOwnFiles, isName);
}

ExtractionOutcome ExtractArchive(const std::string& path, const std::string& folder,
                                 const ExtractionOwner& owner) {
    const std::string extension = LowerCase(ExtensionOf(path));
    if (extension == "cab")
        return WithReason(ExtractCab(path, folder, owner));
    if (extension == "zip")
        return WithReason(UnzipFile(path, folder, CallbacksOf(owner)));
    return {0, {NotExtracted("", "it is neither a .zip nor a .cab file")}};
}

std::vector<MemberFailure> InspectArchive(const std::string& path, const ExtractionOwner& owner) {
    const std::string extension = LowerCase(ExtensionOf(path));
    if (extension == "zip")
        return WithReason(TestZip(path, CallbacksOf(owner))).failures;
    if (extension == "cab")
        return WithReason(TestCab(path, owner)).failures;
    return {};
}

} // namespace vesk
