#include "archive/modArchive.h"

#include "archive/modCabArchive.h"
#include "archive/modMemberName.h"
#include "archive/modUnzip.h"
#include "base/modText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vesk {

namespace {

ExtractionOutcome ExtractZip(const std::string& path, const std::string& folder,
                             const ExtractionOwner& owner) {
    UnzipCallbacks callbacks;
    callbacks.password = owner.password;
    callbacks.progress = owner.progress;
    return UnzipFile(path, folder, callbacks);
}

} // namespace

bool IsPlainArchiveName(std::string_view name) {
    constexpr std::array<std::string_view, 8> kOwnFiles = {
        "veskbuilder.exe", "veskbuild.exe",  "veskbuilder.ini",          "veskbuilder.hlp",
        "readme.txt",      "veskbuider.log", "veskbuilder-problems.txt", "veskbuilder.sha256"};
    const auto isName = [name](std::string_view own) { return EqualNoCase(own, name); };
    return name.find_first_of("\\/") == std::string_view::npos &&
           PathInside("", name).has_value() && std::ranges::none_of(kOwnFiles, isName);
}

ExtractionOutcome ExtractArchive(const std::string& path, const std::string& folder,
                                 const ExtractionOwner& owner) {
    const std::string extension = LowerCase(ExtensionOf(path));
    if (extension == "cab")
        return ExtractCab(path, folder, owner);
    if (extension == "zip")
        return ExtractZip(path, folder, owner);
    return {0, {{"", "not extracted", "it is neither a .zip nor a .cab file"}}};
}

std::vector<MemberFailure> InspectArchive(const std::string& path) {
    const std::string extension = LowerCase(ExtensionOf(path));
    if (extension == "zip")
        return InspectZip(path);
    if (extension == "cab")
        return InspectCab(path);
    return {};
}

} // namespace vesk
