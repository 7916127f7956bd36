#include "catalogue/clsSha256List.h"

#include "base/Failure.h"
#include "base/modFile.h"
#include "base/modResumeNext.h"
#include "base/modSha256.h"
#include "base/modText.h"
#include "base/modUtf8.h"
#include "base/modWide.h"

#include <windows.h>

#include <map>
#include <optional>

namespace vesk {

namespace {

/// The list's text; empty without a list. @throws Failure for one that cannot be read: taken for an
/// empty one it would let every archive pass, and be replaced by one line
std::string ListText(const std::string& path) {
    std::string text = ReadFileIfThere(path);
    if (IsUtf16(text))
        throw Failure(ERROR_READ_FAULT, "ListText", "cannot read " + path + ": " + kIsUtf16,
                      kIsUtf16);
    return text;
}

/// A list that was made elsewhere may have its names in UTF-8. What a line says in the code page
/// counts before that.
void AddNamesInUtf8(std::map<std::string, std::string>& digests) {
    std::map<std::string, std::string> more;
    for (const auto& [name, digest] : digests) {
        const auto wide = FromUtf8(name);
        if (const auto narrow = wide ? NarrowedExactly(*wide) : std::nullopt)
            more.try_emplace(LowerCase(*narrow), digest);
    }
    digests.merge(more);
}

} // namespace

clsSha256List::clsSha256List(const std::string& programPath) {
    const std::string path = programPath + kSha256FileName;
    const auto report = [this](const Problem& problem) { problems_.push_back(problem); };
    ResumeNext(report, {path, "not read, so no archive's SHA-256 is checked"},
               [&] { text_ = ParseSha256Text(ListText(path)); });
    AddNamesInUtf8(text_.digests);
    for (const std::string& fault : text_.faults)
        problems_.push_back({path, "not read in full", fault});
}

std::string clsSha256List::Expected(const std::string& archiveName) const {
    const auto found = text_.digests.find(LowerCase(archiveName));
    return found == text_.digests.end() ? std::string() : found->second;
}

bool UpdateSha256List(const std::string& programPath, const std::string& archiveName,
                      const std::function<void()>& meanwhile) {
    const std::string path = programPath + kSha256FileName;
    if (StateOf(path) == PathState::Nothing)
        return false;
    const std::string text = ListText(path);
    const std::string digest = Sha256OfFile(programPath + archiveName, meanwhile);
    WriteCompleteFile(path, WithSha256(text, archiveName, digest));
    return true;
}

} // namespace vesk
