#include "archive/modCabName.h"

#include "archive/ArchiveProblem.h"
#include "archive/modMemberPath.h"
#include "base/CodePage.h"
#include "base/modUtf8.h"
#include "base/modWide.h"

#include <windows.h>

#include <utility>

namespace vesk {

namespace {

bool EndsAsFolder(const CabEntry& entry) {
    return (entry.IsUtf8() ? entry.name : WithoutTrailBytes(entry.name)).ends_with('\\') ||
           entry.name.ends_with('/');
}

} // namespace

std::wstring CabEntryName(const CabEntry& entry) {
    if (entry.IsUtf8())
        if (auto name = FromUtf8(entry.name))
            return std::move(*name);
    return Widen(entry.name);
}

std::string CabMemberName(const CabEntry& entry) {
    return Narrowed(CabEntryName(entry));
}

bool IsCabFolderEntry(const CabEntry& entry) {
    return entry.size == 0 &&
           (EndsAsFolder(entry) || (entry.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0);
}

void JudgeCabNames(CabDirectory& directory) {
    for (CabEntry& entry : directory.entries) {
        if (!entry.refusal.empty())
            continue;
        try {
            MemberPath(L"", CabEntryName(entry), IsCabFolderEntry(entry));
            if (EndsAsFolder(entry) && entry.size != 0)
                throw ArchiveProblem(kFolderWithContent);
        } catch (const ArchiveProblem& problem) {
            entry.refusal = problem.what();
            entry.leftOut = true;
        }
    }
}

} // namespace vesk
