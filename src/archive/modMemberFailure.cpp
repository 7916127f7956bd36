#include "archive/modMemberFailure.h"

#include "archive/ArchiveProblem.h"
#include "base/Problem.h"
#include "base/modSystemError.h"

#include <string>

namespace vesk {

MemberFailure NotExtracted(const std::string& member, const std::string& reason) {
    return {member, "not extracted", reason};
}

MemberFailure FailureOf(const std::string& member, const std::exception& thrown) {
    if (dynamic_cast<const ArchiveProblem*>(&thrown) != nullptr)
        return NotExtracted(member, thrown.what());
    return {member, "not written", ReasonOf(thrown)};
}

MemberFailure WrittenOver(const std::string& later, const std::string& earlier) {
    return {later, "written over another member", "has the same name as " + earlier};
}

MemberFailure NotStamped(const std::string& member, std::uint32_t error) {
    return {member, "time or attributes not set", AsReason(SystemErrorText(error))};
}

} // namespace vesk
