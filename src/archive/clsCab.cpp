#include "archive/clsCab.h"

#include "archive/clsCabExtraction.h"
#include "archive/clsCabIteration.h"
#include "archive/modCabName.h"
#include "base/modText.h"

#include <windows.h>

#include <vector>

namespace vesk {

namespace {

/// By way of the difference between here and Greenwich today, as the member list always had it.
CalendarTime CalendarFromDos(WORD date, WORD time) {
    FILETIME stored{};
    FILETIME local{};
    SYSTEMTIME calendar{};
    if (DosDateTimeToFileTime(date, time, &stored) == 0 ||
        FileTimeToLocalFileTime(&stored, &local) == 0 ||
        FileTimeToSystemTime(&local, &calendar) == 0)
        return {};
    return {calendar.wYear, calendar.wMonth,  calendar.wDay,
            calendar.wHour, calendar.wMinute, calendar.wSecond};
}

CabMember MemberOf(const CabEntry& entry) {
    CabMember member;
    member.fullName = CabMemberName(entry);
    member.fileName = FileNameOf(member.fullName);
    member.folder = ParentOf(member.fullName);
    member.wideName = CabEntryName(entry);
    member.size = static_cast<std::int32_t>(entry.size);
    member.time = CalendarFromDos(entry.dosDate, entry.dosTime);
    return member;
}

} // namespace

clsCab::clsCab(CabEvents* owner) : owner_(std::make_shared<CabEvents*>(owner)) {}

std::int32_t clsCab::FileCount() {
    return static_cast<std::int32_t>(clsCabIteration(*this, owner_).ReadDirectory().entries.size());
}

void clsCab::Extract() {
    clsCabExtraction(*this, owner_, clsCabExtraction::Mode::Extract).Run();
}

void clsCab::Test() {
    clsCabExtraction(*this, owner_, clsCabExtraction::Mode::Test).Run();
}

void clsCab::GetInfo() {
    clsCabIteration iteration(*this, owner_);
    iteration.Run([&] {
        const bool one = !FileToExtract.empty();
        const CabDirectory directory = iteration.ReadDirectory();
        for (const CabEntry& entry : directory.entries) {
            if (!iteration.Matches(entry))
                continue;
            iteration.Raise([&](CabEvents& owner) { owner.OnFileFound(MemberOf(entry)); });
            if (one)
                return;
        }
    });
}

std::string clsCab::GetXML() {
    clsCabIteration iteration(*this, owner_);
    std::vector<CabMember> members;
    const CabDirectory directory = iteration.ReadDirectory();
    members.reserve(directory.entries.size());
    for (const CabEntry& entry : directory.entries)
        members.push_back(MemberOf(entry));
    return CabXml(iteration.CabName(), members);
}

} // namespace vesk
