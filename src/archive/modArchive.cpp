#include "archive/modArchive.h"

#include "archive/modCabArchive.h"
#include "archive/modMemberName.h"
#include "archive/modUnzip.h"
#include "base/modText.h"

#include <utility>

namespace vesk {

namespace {

ExtractionOutcome ExtractZip(const std::string& path, const std::string& folder,
                             const ExtractionOwner& owner) {
    UnzipCallbacks callbacks;
    callbacks.letEventsRun = [&] {
        if (owner.progress)
            owner.progress(0);
    };
    bool wrongBefore = false;
    callbacks.password = [&](const std::string&) {
        return owner.password ? owner.password(std::exchange(wrongBefore, true)) : std::nullopt;
    };
    return UnzipFile(path, folder, callbacks);
}

} // namespace

bool IsPlainArchiveName(std::string_view name) {
    return name.find_first_of("\\/") == std::string_view::npos && PathInside("", name).has_value();
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
    if (extension == "cab")
        return InspectCab(path);
    return {};
}

} // namespace vesk
